#include "tools/sxml/character_set.h"

#include <iconv.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>

#include "host/encoding.h"
#include "tools/sxml/errors.h"

namespace command {

namespace {

constexpr std::int32_t UNDEFINED = -1;
using Characters = std::array<std::int32_t, 256>;  // Unicode for each byte, or UNDEFINED

[[noreturn]] void fail_unknown(const std::string& name) {
    fail_usage("--encoding " + name +
               ": not a known character set; utf-8, iso-8859-1, cp037, cp1047, cp500 and cp273 "
               "are some of those known");
}

// A converter from a named character set to Unicode.
class Converter {
  public:
    explicit Converter(const std::string& name) : handle_(iconv_open("UTF-32LE", name.c_str())) {
        if (reinterpret_cast<std::intptr_t>(handle_) == -1) fail_unknown(name);
    }
    ~Converter() { iconv_close(handle_); }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    // The character that a single byte stands for; UNDEFINED when there is none. Throws Failure
    // when the byte only begins a character.
    std::int32_t character(std::uint8_t byte, const std::string& name) {
        char input = static_cast<char>(byte);
        std::array<char, 16> output{};
        char* from = &input;
        char* to = output.data();
        std::size_t input_left = 1;
        std::size_t output_left = output.size();
        iconv(handle_, nullptr, nullptr, nullptr, nullptr);
        const std::size_t result = iconv(handle_, &from, &input_left, &to, &output_left);
        if (result == static_cast<std::size_t>(-1) && errno == EINVAL) {
            fail_usage("--encoding " + name +
                       ": characters of several bytes are understood in utf-8 only");
        }
        std::int32_t character = UNDEFINED;
        if (result == 0 && output.size() - output_left == sizeof character) {
            std::memcpy(&character, output.data(), sizeof character);
        }
        return character;
    }

  private:
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

CharacterSet::CharacterSet(const std::string& name) : name_(name) {
    const std::int32_t code = host_encoding_code(name.c_str());
    if (code == HOST_ENCODING_UTF8) {
        become_utf8();
        return;
    }
    if (!is_xml_name_of_encoding(name)) fail_unknown(name);
    Converter converter(name);
    Characters characters;
    for (std::size_t byte = 0; byte < characters.size(); ++byte) {
        characters[byte] = converter.character(static_cast<std::uint8_t>(byte), name);
    }
    become_single_byte(characters);
    if (code == HOST_ENCODING_LATIN1) declared_name_ = "ISO-8859-1";
}

void CharacterSet::become_utf8() {
    utf8_ = true;
    declared_name_ = "UTF-8";
    for (std::size_t byte = 0; byte < classes_.size(); ++byte) {
        classes_[byte] = byte < 0x80 ? classify_character(static_cast<std::int32_t>(byte))
                                     : ByteClass::multi_byte;
    }
}

void CharacterSet::become_single_byte(const Characters& characters) {
    characters_ = characters;
    ebcdic_ = is_ebcdic_set(characters);
    if (!ebcdic_ && !extends_ascii(characters)) {
        fail_usage("--encoding " + name_ + ": neither an extension of ASCII nor EBCDIC");
    }
    declared_name_ = ebcdic_ ? "ISO-8859-1" : upper_case(name_);
    for (std::size_t byte = 0; byte < characters.size(); ++byte) {
        const std::int32_t character = characters[byte];
        const bool lost = ebcdic_ && character > 0xFF;
        classes_[byte] = lost ? ByteClass::not_in_target : classify_character(character);
        translation_[byte] = static_cast<std::uint8_t>(character & 0xFF);
    }
}

}  // namespace command
