#include "platform/character_sets.h"

#include "platform/posix/unicode_converter.h"

namespace platform {

CharacterSetKind find_character_set(const std::string& name, CharacterTable& table) {
    if (find_in_tables(name, table)) return CharacterSetKind::single_byte;
    UnicodeConverter converter(name);
    if (!converter.is_known()) {
        return errno == ENOMEM ? CharacterSetKind::no_memory : CharacterSetKind::unknown;
    }
    for (std::size_t byte = 0; byte < table.size(); ++byte) {
        const char text = static_cast<char>(byte);
        table[byte] = converter.character({&text, 1});
        if (table[byte] == BEGINS_CHARACTER) return CharacterSetKind::multi_byte;
    }
    return CharacterSetKind::single_byte;
}

}  // namespace platform
