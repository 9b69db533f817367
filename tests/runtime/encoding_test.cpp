#include "host/encoding.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tests/runtime/scratch.h"

namespace {

using namespace std::string_view_literals;

HostTextSpan span_of(std::string_view text, std::int32_t encoding) {
    return {text.data(), text.size(), encoding};
}

// An ASCII text in the units of an encoding.
std::string in_units(std::string_view text, std::int32_t encoding) {
    const bool is_big = encoding == HOST_ENCODING_UTF16BE || encoding == HOST_ENCODING_UTF32BE;
    const auto padding = static_cast<std::size_t>(host_unit_width(encoding) - 1);
    std::string result;
    for (const char c : text) {
        if (is_big) result.append(padding, '\0');
        result += c;
        if (!is_big) result.append(padding, '\0');
    }
    return result;
}

constexpr std::int32_t ALL_ENCODINGS[] = {-1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 1000};

TEST(Encoding, CodesOfNames) {
    const std::pair<const char*, std::int32_t> cases[] = {
        {"UTF-8", 2},      {"utf8", 2},           {"Utf-16", 3},    {"UTF-16LE", 3},
        {"utf-16be", 5},   {"UTF-32LE", 4},       {"ucs-4", 4},     {"UTF-32BE", 6},
        {"ISO-8859-1", 7}, {"Latin1", 7},         {"", -1},         {"no-such", -1},
        {"utf-8//", -1},   {"ascii//IGNORE", -1}, {"\xFF\xFE", -1}, {nullptr, -1},
    };
    for (const auto& [name, code] : cases) {
        EXPECT_EQ(host_encoding_code(name), code) << (name != nullptr ? name : "(null)");
    }
    EXPECT_EQ(host_encoding_code(std::string(5000, 'x').c_str()), HOST_ENCODING_UNKNOWN);
    const std::int32_t first = host_encoding_code("windows-1252");
    const std::int32_t second = host_encoding_code("IBM037");
    EXPECT_GE(first, 8);
    EXPECT_GE(second, 8);
    EXPECT_NE(first, second);
    EXPECT_EQ(host_encoding_code("WINDOWS-1252"), first);
    EXPECT_EQ(host_encoding_code("ibm037"), second);
}

TEST(Encoding, CharacterLengthComesFromTheFirstUnit) {
    struct Case {
        std::int32_t code;
        std::string_view unit;
        std::size_t length;
    };
    const Case cases[] = {
        {2, "a"sv, 1},        {2, "\x80"sv, 1},     {2, "\xC1"sv, 1},     {2, "\xC2"sv, 2},
        {2, "\xDF"sv, 2},     {2, "\xE0"sv, 3},     {2, "\xEF"sv, 3},     {2, "\xF0"sv, 4},
        {2, "\xF4"sv, 4},     {2, "\xF5"sv, 1},     {2, "\xFF"sv, 1},     {3, "\x00\xD8"sv, 4},
        {3, "\xFF\xDB"sv, 4}, {3, "\x00\xDC"sv, 2}, {3, "\xD8\x00"sv, 2}, {5, "\xD8\x00"sv, 4},
        {5, "\xDC\x00"sv, 2}, {4, "a\0\0\0"sv, 4},  {6, "\0\0\0a"sv, 4},  {7, "\xE0"sv, 1},
        {0, "\xE0"sv, 1},     {1, "\xE0"sv, 1},     {-1, "\xE0"sv, 1},    {8, "\xE0"sv, 1},
    };
    for (const Case& one : cases) {
        const std::vector<char> exact(one.unit.begin(), one.unit.end());  // no byte after the unit
        EXPECT_EQ(host_char_length(one.code, exact.data()), one.length)
            << "code " << one.code << ", unit " << testing::PrintToString(one.unit);
    }
}

TEST(Encoding, TrimmingDropsXmlWhiteSpaceInEveryWidth) {
    const std::pair<std::string_view, std::string_view> cases[] = {
        {"", ""},        {"a", "a"},           {"  ", ""},
        {" \t\r\n", ""}, {" a b\n", "a b"},    {"\ta", "a"},
        {"a\r\n", "a"},  {"\v a\f", "\v a\f"}, {"AB  \0"sv, "AB  \0"sv},
    };
    for (const std::int32_t code : ALL_ENCODINGS) {
        for (const auto& [text, wanted] : cases) {
            const std::string bytes = in_units(text, code);
            const HostTextSpan span = span_of(bytes, code);
            std::uint64_t start = 99;
            std::uint64_t end = 99;
            host_trim_span(&span, &start, &end);
            ASSERT_LE(start, end);
            EXPECT_EQ(bytes.substr(start, end - start), in_units(wanted, code))
                << "code " << code << ", " << testing::PrintToString(text);
        }
    }
}

TEST(Encoding, FindWalksWholeCharactersWithinTheSpan) {
    struct Case {
        std::int32_t code;
        std::string_view text;
        std::ptrdiff_t found;  // byte offset, -1 for none
    };
    const Case cases[] = {
        {0, "ab<"sv, 2},
        {2, "\xC3\xA4<"sv, 2},
        {2, "\xE2"sv, -1},  // cut short: nothing after it is read
        {2, "\xE2\x82"sv, -1},
        {3, "\x3C\x61<\0"sv, 2},  // the first unit only looks like one
        {3, "<"sv, -1},           // half a unit
        {3, "\x00\xD8"sv, -1},    // half a pair
        {5, "<a\0<"sv, 2},
        {4, "a\0\0\0<\0\0\0"sv, 4},
        {6, "<\0\0a\0\0\0<"sv, 4},
        {4, "<\0\0"sv, -1},
        {7, "\xE2<"sv, 1},
        {0, ""sv, -1},
    };
    for (const Case& one : cases) {
        const std::vector<char> exact(one.text.begin(), one.text.end());
        const HostTextSpan span{exact.data(), exact.size(), one.code};
        const char* found = host_span_find_char(&span, '<');
        EXPECT_EQ(found != nullptr ? found - exact.data() : -1, one.found)
            << "code " << one.code << ", " << testing::PrintToString(one.text);
    }
}

TEST(Encoding, DocumentsShowTheirEncoding) {
    const std::pair<std::string_view, std::int32_t> cases[] = {
        {"\xEF\xBB\xBF<?xml"sv, 2},
        {"\xFF\xFE<\0"sv, 3},
        {"\xFE\xFF\0<"sv, 5},
        {"\xFF\xFE\0\0<"sv, 4},
        {"\0\0\xFE\xFF"sv, 6},
        {"<?xml"sv, 2},
        {"<\0?\0"sv, 3},
        {"\0<\0?"sv, 5},
        {"<\0\0\0"sv, 4},
        {"\0\0\0<"sv, 6},
        {"<\0r\0"sv, 3},
        {"<"sv, 2},
        {""sv, 2},
        {"\xFF"sv, 2},
        {"\0\0"sv, 2},
        {"  <a/>"sv, 2},
        {"<a"sv, 2},
    };
    for (const auto& [text, code] : cases) {
        const HostTextSpan span = span_of(text, 0);
        EXPECT_EQ(host_detect_encoding(&span), code) << testing::PrintToString(text);
    }
}

TEST(Encoding, DecodingUtf8StopsAtTheEndAndReplacesWhatIsBroken) {
    constexpr std::uint32_t bad = 0xFFFD;
    using Characters = std::vector<std::uint32_t>;
    const std::pair<std::string_view, Characters> cases[] = {
        {"", {}},
        {"aZ", {'a', 'Z'}},
        {"\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80", {0xE4, 0x20AC, 0x1F600}},
        {"\xF4\x8F\xBF\xBF", {0x10FFFF}},
        {"\xC3", {bad}},
        {"\xE2\x82", {bad}},
        {"\xE2\x82z", {bad, 'z'}},
        {"\xC0\x80", {bad, bad}},
        {"\xE0\x80\x80", {bad, bad, bad}},
        {"\xED\xA0\x80", {bad, bad, bad}},
        {"\xF4\x90\x80\x80", {bad, bad, bad, bad}},
        {"\x80\xFF", {bad, bad}},
    };
    for (const auto& [text, wanted] : cases) {
        const std::string bytes(text);
        const char* cursor = bytes.c_str();
        Characters found;
        for (std::uint32_t c = host_next_char(&cursor); c != 0; c = host_next_char(&cursor)) {
            found.push_back(c);
        }
        EXPECT_EQ(found, wanted) << testing::PrintToString(bytes);
        EXPECT_EQ(cursor, bytes.c_str() + bytes.size());
    }
}

TEST(Encoding, NamesAreConverted) {
    struct Case {
        const char* name;
        int limit;
        int kind;
        const char* result;
    };
    const Case cases[] = {
        {"CUST-ID", -3, HOST_NAME_LOWER_CASE, "cust-id"},
        {"CUST-ID", -3, HOST_NAME_UNDERSCORES, "CUST_ID"},
        {"CUST-ID-X", 5, HOST_NAME_UNDERSCORES, "CUST_ID-X"},
        {"ABC", 255, HOST_NAME_LOWER_CASE, "abc"},
        {"\xC3\x84"
         "B",
         -3, HOST_NAME_LOWER_CASE,
         "\xC3\x84"
         "b"},
        {"AB-C", -3, 5, "AB-C"},
        {"AB-C", -1, HOST_NAME_LOWER_CASE, "AB-C"},
        {"AB-C", 0, HOST_NAME_LOWER_CASE, "AB-C"},
    };
    for (const Case& one : cases) {
        std::string name = one.name;
        host_convert_case(name.data(), one.limit, one.kind);
        EXPECT_EQ(name, one.result);
    }
}

}  // namespace
