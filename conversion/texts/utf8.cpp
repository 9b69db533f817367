#include "conversion/texts/utf8.h"

namespace conversion {

namespace {

constexpr std::uint8_t CONTINUATION_BITS = 0x3F;

bool is_continuation(char byte) {
    return (static_cast<std::uint8_t>(byte) & 0xC0) == 0x80;
}

// Length in bytes of the character that a byte begins; 0 when it begins none.
std::size_t length_from(std::uint8_t lead) {
    if (lead < 0x80) return 1;
    if (lead >= 0xC2 && lead <= 0xDF) return 2;
    if (lead >= 0xE0 && lead <= 0xEF) return 3;
    return lead >= 0xF0 && lead <= 0xF4 ? 4 : 0;
}

// Overlong forms, surrogates and codes above U+10FFFF are no characters.
bool may_follow(std::uint8_t lead, std::uint8_t second) {
    switch (lead) {
        case 0xE0:
            return second >= 0xA0 && second <= 0xBF;
        case 0xED:
            return second >= 0x80 && second <= 0x9F;
        case 0xF0:
            return second >= 0x90 && second <= 0xBF;
        case 0xF4:
            return second >= 0x80 && second <= 0x8F;
        default:
            return second >= 0x80 && second <= 0xBF;
    }
}

}  // namespace

std::size_t utf8_character_length(const std::uint8_t* text, std::size_t available) {
    const std::size_t length = length_from(text[0]);
    if (length < 2 || length > available || !may_follow(text[0], text[1])) return 0;
    for (std::size_t i = 2; i < length; ++i) {
        if ((text[i] & 0xC0) != 0x80) return 0;
    }
    return text[0] == 0xEF && text[1] == 0xBF && text[2] >= 0xBE ? 0 : length;
}

Utf8Character first_character(std::string_view text) {
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    const std::size_t length = utf8_character_length(bytes, text.size());
    if (length == 0) return {bytes[0], 1};
    char32_t code = bytes[0] & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) code = code << 6U | (bytes[i] & CONTINUATION_BITS);
    return {code, length};
}

void append_utf8(char32_t code, std::string& text) {
    if (code < 0x80) {
        text += static_cast<char>(code);
        return;
    }
    const int following = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
    constexpr char32_t LEADS[] = {0, 0xC0, 0xE0, 0xF0};
    text += static_cast<char>(LEADS[following] | code >> (6 * following));
    for (int i = following - 1; i >= 0; --i) {
        text += static_cast<char>(0x80U | (code >> (6 * i) & CONTINUATION_BITS));
    }
}

std::size_t whole_characters(std::string_view text, std::size_t size) {
    if (text.size() <= size) return text.size();
    constexpr std::size_t MOST_FOLLOWING = 3;
    std::size_t whole = size;
    while (whole > 0 && size - whole < MOST_FOLLOWING && is_continuation(text[whole])) --whole;
    return is_continuation(text[whole]) ? size : whole;
}

}  // namespace conversion
