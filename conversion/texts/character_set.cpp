#include "conversion/texts/character_set.h"

#include <iconv.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <optional>

#include "host/encoding.h"
#include "host/runtime/memory_report.h"

namespace conversion {

namespace {

constexpr std::int32_t UNDEFINED = -1;
using Characters = std::array<std::int32_t, 256>;  // Unicode for each byte, or UNDEFINED

constexpr const char* KNOWN_SETS =
    "utf-8, iso-8859-1, cp037, cp1047, cp500 and cp273 are some of those known";

Problem unsuitable(const std::string& name, const char* why) {
    return {Cause::usage, {}, name + ": " + why, KNOWN_SETS};
}

Problem unknown(const std::string& name, int error) {
    if (error == ENOMEM) return {Cause::no_memory, {}, host::memory_problem(), {}};
    // The C library does not say why it lacks one that is always there.
    for (const char* expected : {"iso-8859-1", "cp037", "cp1047", "cp500", "cp273"}) {
        if (name != expected) continue;
        return {Cause::usage,
                {},
                name + ": its converter cannot be loaded",
                "it is not installed (package libc6), or memory is exhausted"};
    }
    return unsuitable(name, "not a known character set");
}

// A converter from a named character set to Unicode.
class Converter {
  public:
    explicit Converter(const std::string& name) : handle_(iconv_open("UTF-32LE", name.c_str())) {}
    ~Converter() {
        if (is_known()) iconv_close(handle_);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    bool is_known() const { return reinterpret_cast<std::intptr_t>(handle_) != -1; }

    // The character of each byte. Nothing when a byte only begins a character.
    std::optional<Characters> characters() {
        Characters result;
        for (std::size_t byte = 0; byte < result.size(); ++byte) {
            const std::optional<std::int32_t> one = character(static_cast<std::uint8_t>(byte));
            if (!one) return std::nullopt;
            result[byte] = *one;
        }
        return result;
    }

  private:
    std::optional<std::int32_t> character(std::uint8_t byte) {
        char input = static_cast<char>(byte);
        std::array<char, 16> output{};
        char* from = &input;
        char* to = output.data();
        std::size_t input_left = 1;
        std::size_t output_left = output.size();
        iconv(handle_, nullptr, nullptr, nullptr, nullptr);
        const std::size_t result = iconv(handle_, &from, &input_left, &to, &output_left);
        if (result == static_cast<std::size_t>(-1) && errno == EINVAL) return std::nullopt;
        std::int32_t code = UNDEFINED;
        if (result == 0 && output.size() - output_left == sizeof code) {
            std::memcpy(&code, output.data(), sizeof code);
        }
        return code;
    }

    iconv_t handle_;
};

bool is_xml_name_of_encoding(const std::string& name) {
    const auto allowed = [](unsigned char c) {
        return std::isalnum(c) != 0 || c == '.' || c == '_' || c == '-';
    };
    return !name.empty() && std::isalpha(static_cast<unsigned char>(name[0])) != 0 &&
           std::all_of(name.begin(), name.end(), allowed);
}

std::string upper_case(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

bool extends_ascii(const Characters& characters) {
    for (std::int32_t byte = 0x20; byte < 0x7F; ++byte) {
        if (characters[static_cast<std::size_t>(byte)] != byte) return false;
    }
    return true;
}

bool is_ebcdic_set(const Characters& characters) {
    return characters[0x40] == ' ' && characters[0xF0] == '0' && characters[0xF9] == '9' &&
           characters[0xC1] == 'A';
}

ByteClass classify_character(std::int32_t character) {
    if (character == UNDEFINED) return ByteClass::undefined;
    if (character == 0) return ByteClass::nul;
    if (character == '\t' || character == '\n' || character == '\r') return ByteClass::plain;
    return character < 0x20 ? ByteClass::forbidden : ByteClass::plain;
}

}  // namespace

Result<CharacterSet> CharacterSet::find(const std::string& name) {
    CharacterSet set(name);
    const std::int32_t code = host_encoding_code(name.c_str());
    if (code == HOST_ENCODING_UTF8) {
        set.become_utf8();
        return set;
    }
    if (!is_xml_name_of_encoding(name)) return unsuitable(name, "not a known character set");
    Converter converter(name);
    if (!converter.is_known()) return unknown(name, errno);
    const std::optional<Characters> characters = converter.characters();
    if (!characters) {
        return unsuitable(name, "characters of several bytes are understood in utf-8 only");
    }
    if (!set.become_single_byte(*characters)) {
        return unsuitable(name, "neither an extension of ASCII nor EBCDIC");
    }
    if (code == HOST_ENCODING_LATIN1) set.declared_name_ = "ISO-8859-1";
    return set;
}

void CharacterSet::become_utf8() {
    utf8_ = true;
    declared_name_ = "UTF-8";
    for (std::size_t byte = 0; byte < classes_.size(); ++byte) {
        classes_[byte] = byte < 0x80 ? classify_character(static_cast<std::int32_t>(byte))
                                     : ByteClass::multi_byte;
    }
}

bool CharacterSet::become_single_byte(const Characters& characters) {
    characters_ = characters;
    ebcdic_ = is_ebcdic_set(characters);
    if (!ebcdic_ && !extends_ascii(characters)) return false;
    declared_name_ = ebcdic_ ? "ISO-8859-1" : upper_case(name_);
    for (std::size_t byte = 0; byte < characters.size(); ++byte) {
        const std::int32_t character = characters[byte];
        const bool lost = ebcdic_ && character > 0xFF;
        classes_[byte] = lost ? ByteClass::not_in_target : classify_character(character);
        translation_[byte] = static_cast<std::uint8_t>(character & 0xFF);
    }
    return true;
}

}  // namespace conversion
