#include "conversion/texts/character_set.h"

#include <algorithm>
#include <cctype>

#include "host/encoding.h"
#include "host/runtime/memory_report.h"
#include "platform/character_sets.h"

namespace conversion {

namespace {

using Characters = platform::CharacterTable;

constexpr const char* KNOWN_SETS =
    "utf-8, iso-8859-1, cp037, cp1047, cp500 and cp273 are some of those known";

Problem unsuitable(const std::string& name, const char* why) {
    return {Cause::usage, {}, name + ": " + why, KNOWN_SETS};
}

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
    if (character == platform::NO_CHARACTER) return ByteClass::undefined;
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
    Characters characters{};
    const auto kind = platform::find_character_set(name, characters);
    if (kind == platform::CharacterSetKind::no_memory) {
        return Problem{Cause::no_memory, {}, host::memory_problem(), {}};
    }
    if (kind == platform::CharacterSetKind::unknown) {
        return unsuitable(name, "not a known character set");
    }
    if (kind == platform::CharacterSetKind::multi_byte) {
        return unsuitable(name, "characters of several bytes are understood in utf-8 only");
    }
    if (!set.become_single_byte(characters)) {
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
