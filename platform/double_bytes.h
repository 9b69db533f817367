// Character sets of which some characters take two bytes: what the system's converter knows.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/character_sets.h"

namespace platform {

struct DoubleByteSet {
    CharacterTable single{};          // Unicode for each byte by itself, or NO_CHARACTER
    std::array<bool, 256> is_lead{};  // bytes that begin a character of two
    // 65536: Unicode for two bytes, the first counting 256; NO_CHARACTER, or BEGINS_CHARACTER for
    // the start of one that takes more bytes.
    std::vector<std::int32_t> pairs;
    std::vector<bool> is_read_only;  // of these, pairs whose character is written by another one
    bool has_shifts = false;         // pairs stand between shift-out and shift-in (EBCDIC)
};

// Looks a set up by its name. multi_byte: `set` is filled; unknown: the system does not know it, or
// it is of another kind; no_memory: memory is exhausted.
CharacterSetKind find_double_byte_set(const std::string& name, DoubleByteSet& set);

}  // namespace platform
