// Character sets of which some characters take two bytes: what the system's converter knows.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace platform {

struct DoubleByteSet {
    static constexpr std::int32_t NONE = -1;

    std::array<std::int32_t, 256> single{};  // Unicode for each byte by itself, or NONE
    std::array<bool, 256> is_lead{};         // bytes that begin a character of two
    std::vector<std::int32_t> pairs;         // 65536: Unicode for two bytes, the first counting 256
    bool has_shifts = false;                 // pairs stand between shift-out and shift-in (EBCDIC)
};

// Looks a set up by its name. False when the system does not know it, or it is of another kind.
bool find_double_byte_set(const std::string& name, DoubleByteSet& set);

}  // namespace platform
