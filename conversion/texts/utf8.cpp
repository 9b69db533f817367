#include "conversion/texts/utf8.h"

namespace documents {

namespace {

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

std::size_t utf8_length_from(std::uint8_t lead) {
    if (lead < 0x80) return 1;
    if (lead >= 0xC2 && lead <= 0xDF) return 2;
    if (lead >= 0xE0 && lead <= 0xEF) return 3;
    return lead >= 0xF0 && lead <= 0xF4 ? 4 : 0;
}

std::size_t utf8_character_length(const std::uint8_t* text, std::size_t available) {
    const std::size_t length = utf8_length_from(text[0]);
    if (length < 2 || length > available || !may_follow(text[0], text[1])) return 0;
    for (std::size_t i = 2; i < length; ++i) {
        if ((text[i] & 0xC0) != 0x80) return 0;
    }
    return text[0] == 0xEF && text[1] == 0xBF && text[2] >= 0xBE ? 0 : length;
}

}  // namespace documents
