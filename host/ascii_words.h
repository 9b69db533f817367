// Looking at bytes of text eight at a time. No services: the module, the host and what is built on
// them use the same tests.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace ascii {

static_assert(std::endian::native == std::endian::little, "the first byte is the lowest");

using Word = std::uint64_t;
constexpr std::size_t WORD_SIZE = sizeof(Word);
constexpr Word EACH = 0x0101010101010101U;  // times a byte: a word of that byte
constexpr Word HIGH_BITS = 0x80 * EACH;
constexpr Word BLANKS = ' ' * EACH;

inline Word load(const char* text) {
    Word word;
    std::memcpy(&word, text, sizeof word);
    return word;
}

// A word of up to eight bytes of text, blanks after them. Nothing after the text is read.
inline Word load_short(const char* text, std::size_t length) {
    if (length >= WORD_SIZE) return load(text);
    Word word = 0;
    if (length >= 4) {
        std::uint32_t first;
        std::uint32_t last;
        std::memcpy(&first, text, sizeof first);
        std::memcpy(&last, text + length - sizeof last, sizeof last);
        word = first | Word{last} << (8 * (length - sizeof last));
    } else {
        for (std::size_t i = 0; i < length; ++i) {
            word |= Word{static_cast<unsigned char>(text[i])} << (8 * i);
        }
    }
    return word | BLANKS << (8 * length);
}

// What is left of a word holds a high bit when any byte is below the blank or above 0x7F. Results
// may be joined with "or" and tested at the end with is_odd.
inline Word oddities(Word word) {
    return (word - BLANKS) | word;
}
inline bool is_odd(Word oddities) {
    return (oddities & HIGH_BITS) != 0;
}

// Whether all bytes are from the blank to 0x7F.
inline bool is_printable(const char* text, std::size_t length) {
    if (length < WORD_SIZE) return !is_odd(oddities(load_short(text, length)));
    Word odd = 0;
    for (std::size_t i = 0; i + WORD_SIZE <= length; i += WORD_SIZE)
        odd |= oddities(load(text + i));
    return !is_odd(odd | oddities(load(text + length - WORD_SIZE)));
}

// A word whose high bits are all set unless a byte is one of the five characters that XML has
// entities for. Only for words without oddities. Results may be joined with "and".
inline Word lacks_markup(Word word) {
    constexpr Word ADDED = 0x7F * EACH;  // carries into the high bit of all bytes but zeros
    const Word angles = (word & ~(2 * EACH)) ^ ('<' * EACH);  // < and >
    const Word ampersands = (word & ~EACH) ^ ('&' * EACH);    // & and '
    return (angles + ADDED) & (ampersands + ADDED) & ((word ^ ('"' * EACH)) + ADDED);
}
inline bool has_markup(Word lacking) {
    return (lacking & HIGH_BITS) != HIGH_BITS;
}

// The length of a text without the blanks at its end.
inline std::size_t length_without_blanks(const char* text, std::size_t length) {
    while (length >= WORD_SIZE) {
        const Word other = load(text + length - WORD_SIZE) ^ BLANKS;
        if (other != 0) return length - static_cast<std::size_t>(std::countl_zero(other)) / 8;
        length -= WORD_SIZE;
    }
    const Word other = load_short(text, length) ^ BLANKS;
    return other == 0 ? 0 : WORD_SIZE - static_cast<std::size_t>(std::countl_zero(other)) / 8;
}

}  // namespace ascii
