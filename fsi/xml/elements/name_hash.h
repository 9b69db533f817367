// A keyed hash of names (SipHash with one round a word and three at the end), so that nobody can
// construct a document whose names all collide.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

struct HashKey {
    std::uint64_t low;
    std::uint64_t high;
};

// The hash key of this process: authors of documents do not know the addresses that the system has
// chosen.
HashKey process_hash_key();

class NameHash {
  public:
    explicit NameHash(HashKey key)
        : v0_(key.low ^ 0x736F6D6570736575U),
          v1_(key.high ^ 0x646F72616E646F6DU),
          v2_(key.low ^ 0x6C7967656E657261U),
          v3_(key.high ^ 0x7465646279746573U) {}

    std::uint32_t operator()(const char* text, std::size_t length) {
        const std::size_t tail = length % sizeof(std::uint64_t);
        const char* const end = text + (length - tail);
        for (; text != end; text += sizeof(std::uint64_t)) add(load(text, sizeof(std::uint64_t)));
        add(load(text, tail) | std::uint64_t{length} << 56U);
        v2_ ^= 0xFF;
        for (int i = 0; i < 3; ++i) round();
        return static_cast<std::uint32_t>(v0_ ^ v1_ ^ v2_ ^ v3_);
    }

  private:
    static std::uint64_t load(const char* text, std::size_t length) {
        std::uint64_t word = 0;
        std::memcpy(&word, text, length);
        return word;
    }

    void add(std::uint64_t word) {
        v3_ ^= word;
        round();
        v0_ ^= word;
    }

    void round() {
        v0_ += v1_;
        v1_ = std::rotl(v1_, 13) ^ v0_;
        v0_ = std::rotl(v0_, 32);
        v2_ += v3_;
        v3_ = std::rotl(v3_, 16) ^ v2_;
        v0_ += v3_;
        v3_ = std::rotl(v3_, 21) ^ v0_;
        v2_ += v1_;
        v1_ = std::rotl(v1_, 17) ^ v2_;
        v2_ = std::rotl(v2_, 32);
    }

    std::uint64_t v0_;
    std::uint64_t v1_;
    std::uint64_t v2_;
    std::uint64_t v3_;
};
