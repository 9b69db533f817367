// Character sets whose characters take one byte each: those of the project's own tables, and what
// the system's converter knows besides where there is one.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace platform {

constexpr std::int32_t NO_CHARACTER = -1;
constexpr std::int32_t BEGINS_CHARACTER = -2;  // the bytes only begin a character
// Unicode for each byte, NO_CHARACTER where the set has none.
using CharacterTable = std::array<std::int32_t, 256>;

enum class CharacterSetKind : std::uint8_t { unknown, single_byte, multi_byte, no_memory };

// Looks a set up by any of its names, in any letter case; `table` is filled for single_byte.
// no_memory: memory is exhausted.
CharacterSetKind find_character_set(const std::string& name, CharacterTable& table);

// The same, of the project's tables only. False when they do not have it.
bool find_in_tables(const std::string& name, CharacterTable& table);

}  // namespace platform
