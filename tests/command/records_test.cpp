// Record files: fixed and line sequential ones, whole and damaged, with good and bad contents.

#include "tests/command/command_run.h"

namespace {

const std::string COPYBOOK =
    "       01  ITEM.\n"
    "           05  CODE-ID PIC X(4).\n"
    "           05  AMOUNT PIC S9(3).\n"
    "           05  TAG PIC X(2) OCCURS 2.\n";
constexpr int RECORD_LENGTH = 11;

std::string element(const std::string& name, const std::string& text, int level) {
    return std::string(static_cast<std::size_t>(level), ' ') + "<" + name + ">" + text + "</" +
           name + ">\r\n";
}

// The records part of a document.
std::string item(const std::string& code, const std::string& amount, const std::string& tag1,
                 const std::string& tag2) {
    return " <item>\r\n" + element("code_id", code, 2) + element("amount", amount, 2) +
           element("tag", tag1, 2) + element("tag", tag2, 2) + " </item>\r\n";
}

struct RecordCase {
    const char* name;
    std::string records;
    std::vector<std::string> options;
    int status;
    std::string items;              // the records part of the document, with status 0
    std::vector<std::string> said;  // in standard error; empty: nothing is said
};

void PrintTo(const RecordCase& one, std::ostream* out) {
    *out << one.name;
}

class RecordsTest : public CommandTest, public testing::WithParamInterface<RecordCase> {};

TEST_P(RecordsTest, ConvertsOrRefuses) {
    const RecordCase& expected = GetParam();
    write_file("items.cpy", COPYBOOK);
    write_file("items.dat", expected.records);
    std::vector<std::string> words = {"to-xml",
                                      "items.dat",
                                      "items.xml",
                                      "--layout",
                                      "items.cpy",
                                      "--set",
                                      "SXML_CREATE_STYLE=NONE"};
    words.insert(words.end(), expected.options.begin(), expected.options.end());
    const Outcome outcome = sxml(words);
    EXPECT_EQ(outcome.status, expected.status);
    EXPECT_EQ(outcome.err.empty(), expected.said.empty()) << outcome.err;
    for (const std::string& text : expected.said) {
        EXPECT_NE(outcome.err.find(text), std::string::npos)
            << "missing: " << text << "\nin: " << outcome.err;
    }
    if (expected.status != 0) {
        EXPECT_EQ(files(), (std::vector<std::string>{"items.cpy", "items.dat"}));
        return;
    }
    const std::string document = read_file("items.xml");
    const std::string start = "-->\r\n<items>\r\n";
    const std::size_t body = document.find(start);
    ASSERT_NE(body, std::string::npos) << document;
    EXPECT_EQ(document.substr(body + start.size()), expected.items + "</items>\r\n");
    EXPECT_EQ(run({"xmllint", "--noout", "items.xml"}).status, 0);
}

const std::string A = "ab  012x y ";
const std::string A_ITEM = item("ab", "12", "x", "y");

// A record with four bytes as its first field.
std::string with_code(const std::string& code) {
    return code + "0001234";
}

std::string with_nul(const char (&code)[5]) {
    return with_code(std::string(code, 4));
}

const std::vector<RecordCase> FIXED = {
    {"empty_file", "", {}, 0, "", {}},
    {"whole_records",
     A + with_code("c&<\""),
     {},
     0,
     A_ITEM + item("c&amp;&lt;&quot;", "0", "12", "34"),
     {}},
    {"overpunched_minus", "ab  01p    ", {}, 0, item("ab", "-10", "", ""), {}},
    {"control_characters_xml_allows",
     with_code("a\tb\n"),
     {},
     0,
     item("a&#x09;b", "0", "12", "34"),
     {}},
    {"nul_at_end", with_nul("ab\0\0"), {}, 0, item("ab", "0", "12", "34"), {}},
    {"utf8",
     with_code("\xC3\xA9\xE2\x80"),
     {},
     1,
     "",
     {"record 1, field code_id, byte offset 2 (2 in the record): the byte 0xE2 is not valid UTF-8",
      "--encoding iso-8859-1"}},
    {"utf8_valid",
     with_code("\xF0\x9F\x98\x80"),
     {},
     0,
     item("\xF0\x9F\x98\x80", "0", "12", "34"),
     {}},
    {"utf8_overlong",
     with_code("a\xC0\xAF"
               "b"),
     {},
     1,
     "",
     {"the byte 0xC0 is not valid UTF-8"}},
    {"utf8_surrogate",
     with_code("\xED\xA0\x80"
               "b"),
     {},
     1,
     "",
     {"the byte 0xED is not valid UTF-8"}},
    {"utf8_no_character",
     with_code("\xEF\xBF\xBE"
               "b"),
     {},
     1,
     "",
     {"the byte 0xEF is not valid UTF-8"}},
    {"utf8_too_large",
     with_code("\xF4\x90\x80\x80"),
     {},
     1,
     "",
     {"the byte 0xF4 is not valid UTF-8"}},
    {"control_character",
     A + "cd  012x \x01z",
     {},
     1,
     "",
     {"sxml: items.dat: record 2, field tag(2), byte offset 20 (9 in the record): the byte 0x01 is "
      "a control character"}},
    {"nul_before_text",
     with_nul("a\0b "),
     {},
     1,
     "",
     {"record 1, field code_id, byte offset 1 (1 in the record): a NUL byte"}},
    {"cut_short",
     A + A + "ab  0",
     {},
     1,
     "",
     {"sxml: items.dat: record 3, byte offset 22: the record is cut short: 5 bytes of 11"}},
    {"lines_read_as_fixed",
     A + "\n" + A + "\n",
     {},
     1,
     "",
     {"the record is cut short: 2 bytes of 11", "read it with --record-format line"}},
    {"bad_number",
     A + "ab  x!?x y ",
     {},
     0,
     A_ITEM + item("ab", "810", "x", "y"),
     {"warning: items.dat: record 2, field amount, byte offset 15: not a valid number: "
      "X'78213F'",
      "1 numeric field held"}},
};

const std::vector<RecordCase> LINES = {
    {"line_feeds", A + "\n" + A + "\n", {"--line"}, 0, A_ITEM + A_ITEM, {}},
    {"last_line_open", A + "\n" + A, {"--line"}, 0, A_ITEM + A_ITEM, {}},
    {"carriage_returns", A + "\r\n" + A + "\r\n", {"--line"}, 0, A_ITEM + A_ITEM, {}},
    {"short_lines_are_filled_up",
     "ab  012\nab  012x\r\n",
     {"--line"},
     0,
     item("ab", "12", "", "") + item("ab", "12", "x", ""),
     {}},
    {"carriage_return_within", "a\rb 012\n", {"--line"}, 0, item("a&#x0d;b", "12", "", ""), {}},
    {"lines_with_more_spaces", A + "  \n" + A + "   \r\n", {"--line"}, 0, A_ITEM + A_ITEM, {}},
    {"no_lines", "", {"--line"}, 0, "", {}},
    {"line_too_long",
     A + "\n" + A + "zz\n",
     {"--line"},
     1,
     "",
     {"sxml: items.dat:2:12: the line is too long: 13 bytes, the record has 11"}},
    {"offset_in_lines",
     A + "\r\n" + with_code("ab\x02 ") + "\r\n",
     {"--line"},
     1,
     "",
     {"record 2, field code_id, byte offset 15 (2 in the record)"}},
};

const auto case_name = [](const auto& info) { return std::string(info.param.name); };
INSTANTIATE_TEST_SUITE_P(Fixed, RecordsTest, testing::ValuesIn(FIXED), case_name);
INSTANTIATE_TEST_SUITE_P(Lines, RecordsTest, testing::ValuesIn(LINES), case_name);

// Buffers end in the middle of records, lines and line ends.
TEST_F(CommandTest, LongFilesComeOutWhole) {
    write_file("items.cpy", COPYBOOK);
    std::string fixed;
    std::string lines;
    constexpr int COUNT = 300'000;
    for (int i = 0; i < COUNT; ++i) {
        fixed += A;
        lines += A + "\r\n";
    }
    static_assert(COUNT * RECORD_LENGTH > 3 * (1 << 20));
    write_file("fixed", fixed);
    write_file("lines", lines);
    EXPECT_EQ(sxml({"to-xml", "fixed", "fixed.xml", "-l", "items.cpy"}).err, "");
    EXPECT_EQ(sxml({"to-xml", "lines", "lines.xml", "-l", "items.cpy", "--line"}).err, "");
    const std::string document = read_file("fixed.xml");
    EXPECT_EQ(document.size(), document.find(" <item>") + COUNT * A_ITEM.size() +
                                   std::string("</items>\r\n").size());
    EXPECT_TRUE(read_file("lines.xml") == document);
}

// A table that depends on a counter ends the record where the counter says.
TEST_F(CommandTest, TablesEndWhereTheirCounterSays) {
    write_file("t.cpy",
               "       01  ROW.\n           05  N PIC 9.\n"
               "           05  W PIC X OCCURS 0 TO 3 DEPENDING ON N.\n");
    write_file("t.dat", std::string("2ab\x01") + "0\x01\x01\x01" + "3abc");
    const Outcome outcome = sxml({"to-xml", "t.dat", "-", "--layout", "t.cpy"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.err.find("2 records whose table has other entries"), std::string::npos);
    EXPECT_NE(
        outcome.out.find(" <row>\r\n  <n>2</n>\r\n  <w>a</w>\r\n  <w>b</w>\r\n </row>\r\n"
                         " <row>\r\n  <n>0</n>\r\n </row>\r\n"
                         " <row>\r\n  <n>3</n>\r\n  <w>a</w>\r\n  <w>b</w>\r\n  <w>c</w>\r\n"),
        std::string::npos)
        << outcome.out;
}

// Of many bad numbers the first ones are named, and all are counted.
TEST_F(CommandTest, BadNumbersAreCounted) {
    write_file("items.cpy", COPYBOOK);
    std::string records;
    for (int i = 0; i < 1500; ++i) records += "ab  x!?x y ";
    write_file("items.dat", records);
    const Outcome outcome = sxml({"to-xml", "items.dat", "items.xml", "-l", "items.cpy"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.err.find(": record 10, field amount"), std::string::npos);
    EXPECT_EQ(outcome.err.find(": record 11, field amount"), std::string::npos);
    EXPECT_NE(outcome.err.find("sxml: warning: items.dat: 1500 numeric fields held no valid number "
                               "and came out repaired; the first 10 are named above\n"),
              std::string::npos)
        << outcome.err;
}

// Binary data that the copybook declares is not text: any byte will do.
TEST_F(CommandTest, HexadecimalFieldsHoldAnyByte) {
    write_file("h.cpy",
               "       01  ROW.\n           05  WORD PIC X(2).\n"
               "      *> sxml: hex\n           05  MASK PIC X(3).\n");
    write_file("h.dat", std::string("ab\x00\x01\xFF", 5));
    const Outcome outcome = sxml({"to-xml", "h.dat", "-", "--layout", "h.cpy"});
    EXPECT_EQ(outcome.err, "");
    EXPECT_NE(outcome.out.find("<mask>0001FF</mask>"), std::string::npos) << outcome.out;
}

}  // namespace
