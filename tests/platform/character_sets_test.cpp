// The project's own tables of characters, with iconv as judge.
#include <gtest/gtest.h>
#include <iconv.h>

#include <sstream>
#include <string>

#include "platform/character_sets.h"

namespace {

constexpr const char* NAMES[] = {
#define CHARACTER_SET(names, ...) names,
#include "platform/character_tables.inc"
#undef CHARACTER_SET
};

std::int32_t character_of_iconv(iconv_t converter, int byte) {
    char input = static_cast<char>(byte);
    std::int32_t code = 0;
    char* from = &input;
    char* to = reinterpret_cast<char*>(&code);
    std::size_t from_left = 1;
    std::size_t to_left = sizeof code;
    iconv(converter, nullptr, nullptr, nullptr, nullptr);
    const std::size_t result = iconv(converter, &from, &from_left, &to, &to_left);
    // Vietnamese and Hebrew: a character waits for marks that may follow.
    iconv(converter, nullptr, nullptr, &to, &to_left);
    return result == 0 && to_left == 0 ? code : platform::NO_CHARACTER;
}

TEST(CharacterTables, AgreeWithIconvUnderEveryName) {
    int compared = 0;
    for (const char* names : NAMES) {
        std::istringstream stream(names);
        for (std::string name; stream >> name;) {
            SCOPED_TRACE(name);
            platform::CharacterTable table{};
            ASSERT_TRUE(platform::find_in_tables(name, table));
            iconv_t converter = iconv_open("UTF-32LE", name.c_str());
            ASSERT_NE(reinterpret_cast<std::intptr_t>(converter), -1);
            for (int byte = 0; byte < 256; ++byte) {
                ASSERT_EQ(table[static_cast<std::size_t>(byte)],
                          character_of_iconv(converter, byte))
                    << "byte " << byte;
            }
            iconv_close(converter);
            ++compared;
        }
    }
    EXPECT_GE(compared, 160);
}

}  // namespace
