#include "platform/character_sets.h"

namespace platform {

// Windows's own conversions accept bytes that stand for nothing, so the tables are all there is.
CharacterSetKind find_character_set(const std::string& name, CharacterTable& table) {
    return find_in_tables(name, table) ? CharacterSetKind::single_byte : CharacterSetKind::unknown;
}

}  // namespace platform
