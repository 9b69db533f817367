#include "host/regex.h"

#include <string>

#include "host/handles.h"
#include "host/runtime/memory/memory_report.h"
#include "tests/runtime/scratch.h"

namespace {

TEST(Regex, FindsTheFirstMatch) {
    struct Case {
        const char* pattern;
        std::string text;
        int start;  // -1 for no match
        int end;
    };
    const Case cases[] = {
        {"b+", "abbbab", 1, 4},
        {".* - made by X.*\n*", "top - made by X 1\nrest", 0, 18},
        {"a.b", "a\nb", -1, -1},
        {"^b", "a\nb", -1, -1},
        {"b$", "b\n", -1, -1},
        {"b$", "ab", 1, 2},
        {"", "x", 0, 0},
        {"x", "", -1, -1},
        {"\\xE4", "\xC3\xE4", 1, 2},
        {"b", std::string("a\0b", 3), 2, 3},
    };
    const std::size_t before = host::live_blocks().size();
    for (const Case& one : cases) {
        const std::uint32_t expression = host_regex_compile(one.pattern, HOST_REGEX_FLAGS);
        ASSERT_NE(expression, 0U) << one.pattern;
        std::size_t start = 77;
        std::size_t end = 77;
        const std::uint32_t match =
            host_regex_match(expression, one.text.data(), one.text.size(), &start, &end);
        EXPECT_EQ(match != 0, one.start >= 0) << one.pattern;
        EXPECT_EQ(start, one.start >= 0 ? static_cast<std::size_t>(one.start) : 77);
        EXPECT_EQ(end, one.start >= 0 ? static_cast<std::size_t>(one.end) : 77);
        host_regex_match_free(expression);  // of the wrong type: stays
        EXPECT_NE(host_handle_ptr(expression), nullptr);
        host_regex_match_free(match);
        host_regex_free(expression);
        EXPECT_EQ(host_regex_match(expression, "x", 1, &start, &end), 0U);
    }
    EXPECT_EQ(host::live_blocks().size(), before);
    EXPECT_EQ(host_regex_compile("(", HOST_REGEX_FLAGS), 0U);
    EXPECT_EQ(host_regex_compile(nullptr, HOST_REGEX_FLAGS), 0U);
}

// Unlimited backtracking would not end in reasonable time.
TEST(Regex, HopelessSearchesGiveUp) {
    const std::uint32_t expression = host_regex_compile("(a+)+$", HOST_REGEX_FLAGS);
    const std::string text = std::string(60, 'a') + "b";
    std::size_t start = 0;
    std::size_t end = 0;
    EXPECT_EQ(host_regex_match(expression, text.data(), text.size(), &start, &end), 0U);
    host_regex_free(expression);
}

}  // namespace
