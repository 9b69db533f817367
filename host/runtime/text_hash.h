// Hash of a text, seeded for each process, so that nobody can prepare names that collide.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace host {

__extension__ typedef unsigned __int128 Product;

// Drawn when the library is loaded.
extern std::uint64_t text_hash_seed;

inline std::uint64_t fold(std::uint64_t a, std::uint64_t b) {
    const Product product = static_cast<Product>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

inline std::uint64_t hash_text(const char* text, std::size_t length) {
    constexpr std::uint64_t multiplier = 0x9E3779B97F4A7C15;
    std::uint64_t hash = text_hash_seed ^ length;
    std::uint64_t word = 0;
    for (; length >= sizeof word; text += sizeof word, length -= sizeof word) {
        std::memcpy(&word, text, sizeof word);
        hash = fold(hash ^ word, multiplier);
    }
    if (length > 0) {
        word = 0;
        std::memcpy(&word, text, length);
        hash = fold(hash ^ word, multiplier ^ text_hash_seed);
    }
    return fold(hash, multiplier);
}

}  // namespace host
