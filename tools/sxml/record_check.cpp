#include "tools/sxml/record_check.h"

#include <algorithm>

namespace command {

namespace {

std::string hexadecimal(std::uint8_t byte) {
    constexpr std::string_view DIGITS = "0123456789ABCDEF";
    return {'0', 'x', DIGITS[byte >> 4], DIGITS[byte & 0xF]};
}

struct LeadByte {
    int length;                // of the character in bytes; 0 for no lead byte
    std::uint8_t second_low;   // bounds of the second byte, which keep out overlong forms,
    std::uint8_t second_high;  // surrogates and codes above U+10FFFF
};

LeadByte lead_byte(std::uint8_t byte) {
    if (byte >= 0xC2 && byte <= 0xDF) return {2, 0x80, 0xBF};
    if (byte == 0xE0) return {3, 0xA0, 0xBF};
    if (byte == 0xED) return {3, 0x80, 0x9F};
    if (byte >= 0xE1 && byte <= 0xEF) return {3, 0x80, 0xBF};
    if (byte == 0xF0) return {4, 0x90, 0xBF};
    if (byte >= 0xF1 && byte <= 0xF3) return {4, 0x80, 0xBF};
    if (byte == 0xF4) return {4, 0x80, 0x8F};
    return {0, 0, 0};
}

// Length of the valid UTF-8 character of several bytes that starts at `text`; 0 when there is none.
int utf8_length(const std::uint8_t* text, std::int32_t available) {
    const LeadByte lead = lead_byte(text[0]);
    if (lead.length == 0 || lead.length > available) return 0;
    if (text[1] < lead.second_low || text[1] > lead.second_high) return 0;
    for (int i = 2; i < lead.length; ++i) {
        if ((text[i] & 0xC0) != 0x80) return 0;
    }
    // U+FFFE and U+FFFF are no characters of XML.
    if (text[0] == 0xEF && text[1] == 0xBF && text[2] >= 0xBE) return 0;
    return lead.length;
}

bool is_all_nul(const std::uint8_t* text, std::int32_t length, std::uint8_t nul) {
    return std::all_of(text, text + length, [nul](std::uint8_t byte) { return byte == nul; });
}

}  // namespace

TextCheck::TextCheck(const CharacterSet& characters) : characters_(characters) {
    for (std::size_t byte = 0; byte < special_.size(); ++byte) {
        special_[byte] = characters.classes()[byte] == ByteClass::plain ? 0 : 1;
    }
}

std::optional<TextProblem> TextCheck::look_closely(const std::uint8_t* text,
                                                   std::int32_t length) const {
    for (std::int32_t i = 0; i < length; ++i) {
        const ByteClass found = characters_.classify(text[i]);
        if (found == ByteClass::plain) continue;
        if (found == ByteClass::nul && is_all_nul(text + i, length - i, text[i])) break;
        const int width = found == ByteClass::multi_byte ? utf8_length(text + i, length - i) : 0;
        if (width == 0) return TextProblem{i, reason_for(text[i])};
        i += width - 1;
    }
    return std::nullopt;
}

std::string TextCheck::reason_for(std::uint8_t byte) const {
    const std::string shown = "the byte " + hexadecimal(byte);
    switch (characters_.classify(byte)) {
        case ByteClass::nul:
            return "a NUL byte with text behind it, which would be lost; " +
                   std::string("does the layout fit the file?");
        case ByteClass::forbidden:
            return shown +
                   " is a control character that XML does not allow; does the layout fit the "
                   "file? Binary data needs the directive `hex` in the copybook";
        case ByteClass::undefined:
            return shown + " is no character of " + characters_.name();
        case ByteClass::not_in_target:
            return shown + " is a character of " + characters_.name() + " that " +
                   characters_.declared_name() + " lacks";
        default:
            return shown +
                   " is not valid UTF-8; if the text is in another character set, name it: "
                   "--encoding iso-8859-1, --encoding cp037";
    }
}

}  // namespace command
