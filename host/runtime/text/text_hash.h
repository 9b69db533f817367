// Hash of a text, seeded for each process, so that nobody can construct names that collide.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace host {

__extension__ typedef unsigned __int128 Product;

// A number that differs from process to process.
std::uint64_t draw_text_hash_seed();

// Drawn when it is first asked for: while a library loads, others may not be there yet.
inline std::uint64_t text_hash_seed() {
    static const std::uint64_t seed = draw_text_hash_seed();
    return seed;
}

inline std::uint64_t fold(std::uint64_t a, std::uint64_t b) {
    const Product product = static_cast<Product>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

template <class Word>
std::uint64_t load_word(const char* bytes) {
    Word word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

inline std::uint64_t hash_text(const char* text, std::size_t length) {
    constexpr std::uint64_t multiplier = 0x9E3779B97F4A7C15;
    constexpr std::size_t word_size = sizeof(std::uint64_t);
    const std::uint64_t seed = text_hash_seed();
    std::uint64_t hash = seed ^ length;
    std::uint64_t last = 0;
    if (length >= word_size) {
        const char* last_word = text + length - word_size;  // may overlap the one before
        for (; text < last_word; text += word_size) {
            hash = fold(hash ^ load_word<std::uint64_t>(text), multiplier);
        }
        last = load_word<std::uint64_t>(last_word);
    } else if (length >= 4) {
        last = load_word<std::uint32_t>(text) << 32 | load_word<std::uint32_t>(text + length - 4);
    } else if (length > 0) {
        last = load_word<std::uint8_t>(text) << 16 |
               load_word<std::uint8_t>(text + length / 2) << 8 |
               load_word<std::uint8_t>(text + length - 1);
    }
    return fold(hash ^ last, multiplier ^ seed);
}

}  // namespace host
