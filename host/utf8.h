// UTF-8: the forms of a character, where one ends, and what it stands for.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace utf8 {

// The bits of a character in a byte that continues it.
constexpr std::uint8_t CONTINUATION_BITS = 0x3F;

template <typename Byte>
constexpr bool continues(Byte byte) {
    return (static_cast<std::uint8_t>(byte) & 0xC0) == 0x80;
}

// Length in bytes of the character that a byte begins; 0 when it begins none.
constexpr std::size_t length_from(std::uint32_t lead) {
    if (lead < 0x80) return 1;
    if (lead >= 0xC2 && lead <= 0xDF) return 2;
    if (lead >= 0xE0 && lead <= 0xEF) return 3;
    return lead >= 0xF0 && lead <= 0xF4 ? 4 : 0;
}

// Whether a byte may follow a lead byte. The limits keep out longer forms than needed, surrogates
// and codes above U+10FFFF.
constexpr bool may_follow(std::uint8_t lead, std::uint8_t second) {
    const std::uint8_t first = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const std::uint8_t last = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    return second >= first && second <= last;
}

// Length of the character of several bytes that a text of `size` bytes (one at least) begins with.
// 0 when there is none: for ASCII, for incomplete forms and those that may_follow keeps out, and
// for U+FFFE and U+FFFF, which are no characters of XML.
template <typename Byte>
constexpr std::size_t sequence_length(const Byte* text, std::size_t size) {
    const auto byte = [text](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
    const std::size_t length = length_from(byte(0));
    if (length < 2 || length > size || !may_follow(byte(0), byte(1))) return 0;
    for (std::size_t i = 2; i < length; ++i) {
        if (!continues(text[i])) return 0;
    }
    return byte(0) == 0xEF && byte(1) == 0xBF && byte(2) >= 0xBE ? 0 : length;
}

struct Character {
    char32_t code;       // what a byte stands for in ISO-8859-1 when it begins no character
    std::size_t length;  // bytes, at least 1
};

// The character that a text (not empty) begins with.
constexpr Character first_character(std::string_view text) {
    const std::size_t length = sequence_length(text.data(), text.size());
    const auto lead = static_cast<std::uint8_t>(text[0]);
    if (length == 0) return {lead, 1};
    char32_t code = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        code = code << 6U | (static_cast<std::uint8_t>(text[i]) & CONTINUATION_BITS);
    }
    return {code, length};
}

// Stores a character's bytes, up to four, at `at`; the place after them.
constexpr char* put(char32_t code, char* at) {
    constexpr char32_t LEADS[] = {0, 0xC0, 0xE0, 0xF0};
    const int following = code < 0x80 ? 0 : code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
    *at++ = static_cast<char>(LEADS[following] | code >> (6 * following));
    for (int i = following - 1; i >= 0; --i) {
        *at++ = static_cast<char>(0x80U | (code >> (6 * i) & CONTINUATION_BITS));
    }
    return at;
}

}  // namespace utf8
