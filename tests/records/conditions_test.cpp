// Conditions of record layouts, tested on records through the function handed to the module.
#include <gtest/gtest.h>

#include "tests/records/layout_fixture.h"

namespace {

using namespace records;
using layout_tests::described;

bool holds(Description& description, int number, std::string record) {
    record.resize(static_cast<std::size_t>(description.record_length()), ' ');
    Xfd& xfd = description.xfd();
    const bool result = Q4TestCOBOLCond(&xfd, number, record.data()) != 0;
    EXPECT_EQ((xfd.conditions[number - 1].is_true & 1) != 0, result);
    return result;
}

std::string bytes(std::initializer_list<int> values) {
    std::string text;
    for (const int value : values) text += static_cast<char>(value);
    return text;
}

struct Case {
    const char* field;      // the clauses of F
    const char* condition;  // over F, and G PIC 9(3) COMP-3 after it
    std::string yes;        // records of which it holds,
    std::string no;         // and does not
};

TEST(Conditions, CompareAsCobolDoes) {
    const Case cases[] = {
        {"PIC X", "F = 'A'", "A", "B"},
        {"PIC X", "F NOT = 'A'", "B", "A"},
        {"PIC X(4)", "F = 'AB'", "AB  ", "ABC "},
        {"PIC X(2)", "F = 'AB  '", "AB", "AC"},
        {"PIC X(2)", "F < 'ABC'", "AB", "AD"},
        {"PIC X(3)", "F > 'AB'", "ABA", "AB "},
        {"PIC X(2)", "F = SPACES", "  ", " x"},
        {"PIC X(2)", "F = ZEROS", "00", "01"},
        {"PIC X(2)", "F = LOW-VALUES", bytes({0, 0}), bytes({0, 32})},
        {"PIC X(2)", "F = HIGH-VALUE", bytes({255, 255}), bytes({255, 0})},
        {"PIC X(2)", "F < HIGH-VALUES", bytes({255, 254}), bytes({255, 255})},
        {"PIC X(4)", "F = ALL 'ab'", "abab", "abaa"},
        {"PIC X(2)", "F = X'0041'", bytes({0, 65}), "0A"},
        {"PIC X(2)", "F = 1", "1 ", "01"},
        {"PIC 9(2)", "F = '01'", "01", "1 "},
        {"PIC 9(3)", "F > 12", "013", "012"},
        {"PIC S9(2)", "F < 0", "0q", "01"},
        {"PIC S9V9", "F = -1.20", "1r", "12"},
        {"PIC 9(2)", "F = ZERO", "00", "10"},
        {"PIC 9(4) COMP", "F >= 513", bytes({2, 1}), bytes({1, 255})},
        {"PIC S9(4) COMP-5", "F = -2", bytes({254, 255}), bytes({255, 254})},
        {"PIC S9(3) COMP-3", "F = -12", bytes({0x01, 0x2D}), bytes({0x01, 0x2C})},
        {"PIC 9(3) COMP-6", "F = 123", bytes({0x01, 0x23}), bytes({0x12, 0x30})},
        {"COMP-1", "F = 1.5", bytes({0, 0, 0xC0, 0x3F}), bytes({0, 0, 0x80, 0x3F})},
        {"PIC 99PPP", "F = 12000", "12", "13"},
        {"PIC 9(2)", "F = G", "12" + bytes({0x01, 0x2C}), "12" + bytes({0x12, 0x0C})},
        {"PIC S9(2) SIGN LEADING SEPARATE", "F = -12", "-12", "+12"},
        {"PIC S9(2) SIGN TRAILING SEPARATE", "F > -1", "12+", "12-"},
        {"PIC S9(2) SIGN LEADING", "F < 0", "q2", "12"},
        {"PIC VPP99", "F = 0.0012", "12", "13"},
        {"PIC S9(4) COMP", "F = -32768", bytes({0x80, 0}), bytes({0x7F, 0xFF})},
        {"PIC X(2) COMP-X", "F = 258", bytes({1, 2}), bytes({2, 1})},
        {"PIC 9(5) COMP-X", "F = 65536", bytes({1, 0, 0}), bytes({0, 0, 1})},
        {"PIC 9(3) COMP-3", "F = ZERO", bytes({0, 0x0F}), bytes({0, 0x1F})},
        {"COMP-2", "F < -1", bytes({0, 0, 0, 0, 0, 0, 0, 0xC0}),
         bytes({0, 0, 0, 0, 0, 0, 0, 0x40})},
        {"BINARY-CHAR UNSIGNED", "F = 255", bytes({255}), bytes({1})},
        {"BINARY-CHAR", "F = -1", bytes({255}), bytes({1})},
        {"BINARY-DOUBLE", "F >= 72057594037927936", bytes({0, 0, 0, 0, 0, 0, 0, 1}),
         bytes({255, 0, 0, 0, 0, 0, 0, 0})},
        {"INDEX", "F = 3", bytes({3, 0, 0, 0}), bytes({0, 0, 0, 3})},
        {"PIC ZZ9.99", "F = '  1.50'", "  1.50", "001.50"},
        {"PIC A(3)", "F >= 'B'", "B", "AZZ"},
        {"PIC X(3) JUST", "F = ' AB'", " AB", "AB "},
        {"PIC X(2)", "F NUMERIC", "12", "1 "},
        {"PIC S9(2)", "F NUMERIC", "1r", "r1"},
        {"PIC S9(2) SIGN LEADING SEPARATE", "F NUMERIC", "-12", "12-"},
        {"PIC 9(3) COMP-3", "F NUMERIC", bytes({0x12, 0x3F}), bytes({0x12, 0x34})},
        {"PIC X(2)", "F ALPHABETIC", "a ", "a1"},
        {"PIC X", "F = 'A' OR 'B'", "B", "C"},
        {"PIC X(2)", "NOT (F = 'AB' OR F = 'CD') AND F > 'A'", "BB", "CD"},
        {"PIC X. 88 OK VALUE 'A' 'K' THRU 'M'", "OK", "L", "N"},
        {"PIC X(2). 88 OK VALUE X'4142'", "OK", "AB", "A "},
        {"PIC S9(3). 88 OK VALUE -5 THRU 5, 100", "OK", "00u", "006"},
    };
    for (const Case& each : cases) {
        const std::string copybook = std::string("01 R.\n 05 F ") + each.field +
                                     ".\n 05 G PIC S9(3) COMP-3.\n*> sxml: when " + each.condition +
                                     "\n 05 H PIC X.";
        SCOPED_TRACE(copybook);
        Description description = described(copybook);
        ASSERT_EQ(description.xfd().condition_count, 1);
        EXPECT_TRUE(holds(description, 1, each.yes));
        EXPECT_FALSE(holds(description, 1, each.no));
    }
}

TEST(Conditions, EachOccurrenceHasItsOwn) {
    Description description = described(
        "01 R.\n 05 E OCCURS 3.\n 10 T PIC X.\n 10 S OCCURS 2.\n*> sxml: when T = 'B'\n"
        " 15 V PIC X.");
    ASSERT_EQ(description.xfd().condition_count, 6);
    const std::string record = "A..B..A..";
    for (int number = 1; number <= 6; ++number) {
        EXPECT_EQ(holds(description, number, record), number == 3 || number == 4) << number;
    }
    EXPECT_EQ(description.condition_text(4), "T = \"B\"");
    EXPECT_EQ(Q4TestCOBOLCond(&description.xfd(), 7, record.data()), 0);
    EXPECT_EQ(Q4TestCOBOLCond(&description.xfd(), 0, record.data()), 0);
}

TEST(Conditions, TextsAndSpacesAreEbcdicWhenTheRecordIs) {
    LayoutOptions options;
    options.encoding = RecordEncoding::ebcdic;
    options.ebcdic_sign = true;
    Description description = described(
        "01 R.\n 05 T PIC X(2).\n 05 N PIC S9(2).\n*> sxml: when T = 'B' AND N = -12\n"
        " 05 V PIC X.\n*> sxml: when T ALPHABETIC AND N NUMERIC\n 05 W PIC X.",
        options);
    EXPECT_TRUE(holds(description, 1, bytes({0xC2, 0x40, 0xF1, 0xD2})));
    EXPECT_FALSE(holds(description, 1, bytes({0xC2, 0xC2, 0xF1, 0xD2})));
    EXPECT_TRUE(holds(description, 2, bytes({0xC2, 0x40, 0xF1, 0xD2})));
    EXPECT_FALSE(holds(description, 2, bytes({0xF2, 0x40, 0xF1, 0xD2})));
}

// Of literals in UTF-8; e acute is 51 in code page 037, the pound sign B1.
TEST(Conditions, LettersBeyondAsciiAreTranslatedToo) {
    const std::string copybook =
        "01 R.\n 05 T PIC X(4).\n*> sxml: when T = '\xC3\xA9\xC2\xA3'\n 05 V PIC X.";
    LayoutOptions options;
    Description as_it_is = described(copybook, options);
    EXPECT_TRUE(holds(as_it_is, 1, "\xC3\xA9\xC2\xA3"));
    options.encoding = RecordEncoding::ebcdic;
    Description ebcdic = described(copybook, options);
    EXPECT_TRUE(holds(ebcdic, 1, bytes({0x51, 0xB1, 0x40, 0x40})));
    EXPECT_FALSE(holds(ebcdic, 1, bytes({0x51, 0x40, 0x40, 0x40})));
}

// Exactly one variant of a place, and one record layout, is there in any record.
TEST(Conditions, WhatHasNoneHoldsWhenNoOtherDoes) {
    Description description = described(
        "01 R.\n 05 T PIC X.\n 05 A PIC X(2).\n*> sxml: when T = 'B'\n 05 B REDEFINES A PIC 99.\n"
        "*> sxml: when T = 'C'\n 05 C REDEFINES A PIC 9V9.");
    for (const auto& [record, expected] :
         {std::pair{"B12", 2}, std::pair{"C12", 3}, std::pair{"?12", 1}}) {
        for (int number = 1; number <= 3; ++number) {
            EXPECT_EQ(holds(description, number, record), number == expected) << record;
        }
    }
}

}  // namespace
