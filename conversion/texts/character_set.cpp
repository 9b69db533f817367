#include "conversion/texts/character_set.h"

#include <algorithm>
#include <cctype>

#include "host/encoding.h"
#include "host/runtime/memory/memory_report.h"
#include "platform/character_sets.h"

namespace conversion {

namespace {

using Characters = platform::CharacterTable;
using Kind = platform::CharacterSetKind;

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

// Except for the backslash and the tilde, which national sets replace.
bool nearly_extends_ascii(const Characters& characters) {
    for (std::int32_t byte = 0x20; byte < 0x7F; ++byte) {
        const bool is_replaced = byte == '\\' || byte == '~';
        if (!is_replaced && characters[static_cast<std::size_t>(byte)] != byte) return false;
    }
    return true;
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
    return is_control(character) ? ByteClass::forbidden : ByteClass::plain;
}

}  // namespace

DocumentEncoding document_encoding(const std::string& encoding, const std::string& configured) {
    const bool is_latin1 = host_encoding_code(configured.c_str()) == HOST_ENCODING_LATIN1;
    const bool is_own = is_latin1 || configured == encoding;
    return is_own ? DocumentEncoding::single_byte : DocumentEncoding::utf8;
}

Result<CharacterSet> CharacterSet::find(const std::string& name, DocumentEncoding encoding) {
    CharacterSet set(name);
    const std::int32_t code = host_encoding_code(name.c_str());
    if (code == HOST_ENCODING_UTF8) {
        set.become_utf8();
        return set;
    }
    if (!is_xml_name_of_encoding(name)) return unsuitable(name, "not a known character set");
    Characters characters{};
    const Problem no_memory{Cause::no_memory, {}, host::memory_problem(), {}};
    const Kind kind = platform::find_character_set(name, characters);
    if (kind == Kind::no_memory) return no_memory;
    if (kind == Kind::unknown) return unsuitable(name, "not a known character set");
    const bool is_multi_byte = kind == Kind::multi_byte;
    const bool may_shift = characters[SHIFT_OUT] == platform::NO_CHARACTER;
    const Kind pairs = is_multi_byte || may_shift ? set.become_double_byte() : Kind::unknown;
    if (pairs == Kind::no_memory) return no_memory;
    if (pairs == Kind::multi_byte) {
        if (encoding == DocumentEncoding::utf8) return set;
        return unsuitable(name, "documents can have its characters in UTF-8 only");
    }
    if (is_multi_byte) return unsuitable(name, "its characters of several bytes are not known");
    if (!set.become_single_byte(characters, encoding)) {
        return unsuitable(name, "neither an extension of ASCII nor EBCDIC");
    }
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

bool CharacterSet::become_single_byte(const Characters& characters, DocumentEncoding encoding) {
    const bool is_utf8 = encoding == DocumentEncoding::utf8;
    const bool is_latin1 = host_encoding_code(name_.c_str()) == HOST_ENCODING_LATIN1;
    characters_ = characters;
    ebcdic_ = is_ebcdic_set(characters);
    if (!ebcdic_ && !extends_ascii(characters)) return false;
    converts_ = ebcdic_ || (is_utf8 && !is_latin1);
    declared_name_ = upper_case(name_);
    if (converts_) declared_name_ = is_utf8 ? "UTF-8" : "ISO-8859-1";
    if (is_latin1) declared_name_ = "ISO-8859-1";
    classify_bytes(ebcdic_ && !is_utf8);
    return true;
}

// `is_limited`: the document has the characters of ISO-8859-1 only.
void CharacterSet::classify_bytes(bool is_limited) {
    for (std::size_t byte = 0; byte < classes_.size(); ++byte) {
        const std::int32_t character = characters_[byte];
        const bool is_lost = is_limited && character > 0xFF;
        classes_[byte] = is_lost ? ByteClass::not_in_target : classify_character(character);
    }
}

Kind CharacterSet::become_double_byte() {
    platform::DoubleByteSet found;
    const Kind kind = platform::find_double_byte_set(name_, found);
    if (kind != Kind::multi_byte) return kind;
    if (!found.has_shifts && !nearly_extends_ascii(found.single)) return Kind::unknown;
    ebcdic_ = found.has_shifts;
    characters_ = found.single;
    converts_ = true;
    declared_name_ = "UTF-8";
    classify_bytes(false);
    for (std::size_t byte = 0; byte < classes_.size(); ++byte) {
        const bool is_shift = byte == SHIFT_OUT || byte == SHIFT_IN;
        if (found.is_lead[byte] || (ebcdic_ && is_shift)) classes_[byte] = ByteClass::multi_byte;
    }
    pairs_ = std::make_shared<const platform::DoubleByteSet>(std::move(found));
    return Kind::multi_byte;
}

}  // namespace conversion
