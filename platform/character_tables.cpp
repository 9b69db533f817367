// The project's own tables, the same on all systems.
#include <algorithm>
#include <cctype>
#include <string_view>

#include "platform/character_sets.h"

namespace platform {

namespace {

constexpr std::uint16_t UNDEFINED = 0xFFFF;

struct NamedTable {
    std::string_view names;  // separated by blanks, upper case
    std::array<std::uint16_t, 256> characters;
};

constexpr NamedTable TABLES[] = {
#define CHARACTER_SET(names, ...) {names, {__VA_ARGS__}},
#include "platform/character_tables.inc"
#undef CHARACTER_SET
};

bool has_name(std::string_view names, std::string_view wanted) {
    while (!names.empty()) {
        const std::size_t end = std::min(names.find(' '), names.size());
        if (names.substr(0, end) == wanted) return true;
        names.remove_prefix(std::min(end + 1, names.size()));
    }
    return false;
}

}  // namespace

bool find_in_tables(const std::string& name, CharacterTable& table) {
    std::string wanted = name;
    std::ranges::transform(wanted, wanted.begin(),
                           [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    const auto* const found = std::ranges::find_if(
        TABLES, [&wanted](const NamedTable& set) { return has_name(set.names, wanted); });
    if (found == std::end(TABLES)) return false;
    std::ranges::transform(found->characters, table.begin(), [](std::uint16_t character) {
        return character == UNDEFINED ? NO_CHARACTER : std::int32_t{character};
    });
    return true;
}

}  // namespace platform
