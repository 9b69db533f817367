// Pictures, values and conditions, each in the smallest copybook that shows it.
#include <gtest/gtest.h>

#include "tests/records/compile_text.h"

namespace records {
namespace {

struct TextCase {
    const char* text;
    const char* expected;
};

// What is said about the item A that has this picture.
std::string compile_picture(const std::string& picture, bool comma) {
    const std::string names = comma ? "SPECIAL-NAMES. DECIMAL-POINT IS COMMA.\n" : "";
    const std::string head = comma ? "ENVIRONMENT DIVISION.\n" + names + "DATA DIVISION.\n" +
                                         "WORKING-STORAGE SECTION.\n"
                                   : "";
    const std::string text = compile_text(head + "01 A PIC " + picture + ".\n");
    const std::size_t start = text.find(" [");
    if (start != std::string::npos) return text.substr(start + 2, text.find(']') - start - 2);
    const std::size_t error = text.find(':', text.find("in the picture"));
    const std::size_t end = text.find('\n', error);
    const std::size_t caret = text.find('^') - text.rfind('\n', text.find('^'));
    return "at " + std::to_string(caret - 14) + text.substr(error, end - error);
}

TEST(Picture, IsAnalysed) {
    constexpr TextCase cases[] = {
        {"9", "num digits 1 length 1"},
        {"s9(5)v9(2)", "num signed digits 7 scale -2 length 7"},
        {"S9(36)V99", "num signed digits 38 scale -2 length 38"},
        {"9(4)V", "num digits 4 length 4"},
        {"SVPP9(2)", "num signed digits 2 scale -4 p 2 length 2"},
        {"PPP9", "num digits 1 scale -4 p 3 length 1"},
        {"99P(3)", "num digits 2 scale 3 length 2"},
        {"99PPV", "num digits 2 scale 2 length 2"},
        {"A(20)", "alpha length 20"},
        {"X(268435456)", "alnum length 268435456"},
        {"A9X(3)", "alnum length 5"},
        {"XXBXX/X0", "edited length 8"},
        {"N(10)", "nat length 10"},
        {"S9(3).99", "num signed digits 5 scale -2 point . length 6"},
        {"G(3)", "double-byte length 3"},
        {"GGBG", "double-byte length 4"},
        {"NNBNN", "nat-edited length 5"},
        {"ZZZ,ZZ9.99", "edited digits 8 scale -2 length 10"},
        {"$$$,$$9.99CR", "edited signed digits 7 scale -2 length 12"},
        {"-(7)9.9", "edited signed digits 8 scale -1 length 10"},
        {"+ZZ9", "edited signed digits 3 length 4"},
        {"**9.99DB", "edited signed digits 5 scale -2 length 8"},
        {"99/99/9999", "edited digits 8 length 10"},
        {"9B9", "edited digits 2 length 3"},
        {"Z(3)V99", "edited digits 5 scale -2 length 5"},
        {"+9.99E+99", "edited signed digits 3 scale -2 length 9"},
    };
    for (const TextCase& test : cases) {
        EXPECT_EQ(compile_picture(test.text, false), test.expected) << test.text;
    }
    EXPECT_EQ(compile_picture("Z.ZZ9,99", true), "edited digits 6 scale -2 length 8");
    EXPECT_EQ(compile_picture("S9,99", true), "num signed digits 3 scale -2 point , length 4");
    EXPECT_EQ(compile_picture("9,99", true), "edited digits 3 scale -2 length 4");
}

TEST(Picture, MistakesAreShownWhereTheyAre) {
    constexpr TextCase cases[] = {
        {"9(39)", "at 0: a number has at most 38 digits"},
        {"9(30)P(9)", "at 0: a number has at most 38 digits"},
        {"9S9", "at 1: S may occur only once, as the first symbol"},
        {"SS9", "at 0: S may occur only once, as the first symbol"},
        {"9V9V9", "at 3: V may occur only once"},
        {"9P9", "at 1: P must be before all digits or after all digits"},
        {"SV", "at 0: the picture has no character position"},
        {"X(0)", "at 2: a symbol must be repeated at least once"},
        {"X(", "at 1: expected a closing parenthesis"},
        {"X()", "at 2: expected a number between the parentheses"},
        {"X(2A)", "at 2: expected a number between the parentheses"},
        {"X(99999999999999999999)", "at 0: the picture has more than 268435456 positions"},
        {"X(200000000)A(200000000)", "at 0: the picture has more than 268435456 positions"},
        {"XZ", "at 1: this symbol cannot stand in one picture with X or A"},
        {"NX", "at 1: this symbol cannot stand in one picture with N"},
        {"9.9.9", "at 3: only one decimal point is allowed"},
        {"SZ9.9", "at 0: S cannot stand with editing symbols"},
        {"CR99", "at 0: CR and DB stand at the end"},
        {"+9CR", "at 0: a sign cannot stand with CR or DB"},
        {"9+9", "at 1: a sign must be at the beginning or the end"},
        {"Z*9", "at 0: Z and * cannot stand together"},
        {"9Z", "at 1: Z and * stand before all 9"},
        {"$$ZZ9", "at 2: Z and * cannot stand with a floating symbol"},
        {"$$++9", "at 0: only one symbol can float"},
        {"$,", "at 0: the picture has no digit position"},
        {"GX", "at 1: this symbol cannot stand in one picture with G"},
        {"9Q", "at 1: 'Q' is not a picture symbol; expected 9 X A N G S V P or an editing symbol"},
    };
    for (const TextCase& test : cases) {
        EXPECT_EQ(compile_picture(test.text, false), test.expected) << test.text;
    }
}

// The condition that the directive gives, or the message.
std::string compile_condition(const std::string& condition) {
    const std::string text = compile_text("78 limit value 40.\n*> sxml: when " + condition +
                                          "\n01 rec.\n 05 a pic x.\n");
    const std::size_t when = text.find(" when ");
    const std::size_t error = text.find("error: ");
    if (error != std::string::npos) return text.substr(error, text.find('\n', error) - error);
    return text.substr(when + 6, text.find('\n', when) - when - 6);
}

TEST(Condition, IsParsed) {
    constexpr TextCase cases[] = {
        {"a = 'x'", "(A = 'x')"},
        {"a in b of rec <> -1.5", "(A OF B OF REC <> -1.5)"},
        {"a<=b", "(A <= B)"},
        {"a>=1", "(A >= 1)"},
        {"5 < a", "(A > 5)"},
        {"a is not equal to \"it''s\"", "(A <> 'it''s')"},
        {"a is greater than or equal to limit", "(A >= 40)"},
        {"a not greater 3", "(A <= 3)"},
        {"a less than 3", "(A < 3)"},
        {"a is less or equal 3", "(A <= 3)"},
        {"a equals zeroes", "(A = ZERO)"},
        {"a not = high-values", "(A <> HIGH-VALUE)"},
        {"a = x'4a4b'", "(A = x4A4B)"},
        {"a = all '*'", "(A = ALL '*')"},
        {"a is numeric", "(A is numeric)"},
        {"a is not alphabetic", "not (A is alphabetic)"},
        {"a is zero", "(A = 0)"},
        {"a not negative", "(A >= 0)"},
        {"is-open", "IS-OPEN"},
        {"not is-open of rec", "not IS-OPEN OF REC"},
        {"a = 1 and b = 2 or not c = 3", "(or (and (A = 1) (B = 2)) not (C = 3))"},
        {"a = 1 and (b = 2 or c)", "(and (A = 1) (or (B = 2) C))"},
        {"a = 1 or 2 or limit", "(or (A = 1) (A = 2) (A = 40))"},
        {"a > 1 and < 5", "(and (A > 1) (A < 5))"},
        {"not not a", "A"},
        {"a = 1.", "(A = 1)"},
        {"a\n*> sxml: or b", "(or A B)"},
        {"a and\n*> sxml: b =\n*> sxml: 3", "(and A (B = 3))"},
        {"(a\n*> sxml: )", "A"},
    };
    for (const TextCase& test : cases) {
        EXPECT_EQ(compile_condition(test.text), test.expected) << test.text;
    }
}

TEST(Condition, MistakesSayWhatWasExpected) {
    constexpr TextCase cases[] = {
        {"",
         "error: expected a data name, a condition name or a literal, found the end of the line"},
        {"a =",
         "error: expected a data name, a condition name or a literal, found the end of the line"},
        {"(a", "error: expected AND, OR or ')', found the end of the line"},
        {"a)", "error: expected the end of the directive, found ')'"},
        {"a is", "error: expected a comparison, NUMERIC or ALPHABETIC, found the end of the line"},
        {"1 = 2", "error: expected a data name on one side of the comparison"},
        {"'a'", "error: expected a comparison (=, <>, <, <=, >, >=), found the end of the line"},
        {"a(1) = 2", "error: items of tables cannot be used in conditions"},
        {"a of 1 = 2", "error: expected the name of a group or record, found '1'"},
        {"a = 'x", "error: the literal is not closed: expected a quotation mark"},
        {"a == 1", "error: expected a data name, a condition name or a literal, found '='"},
        {"a + 1 = 2", "error: expected the end of the directive, found '+'"},
        {"a = x'4'", "error: expected pairs of hexadecimal digits"},
    };
    for (const TextCase& test : cases) {
        EXPECT_EQ(compile_condition(test.text), test.expected) << test.text;
    }
    const std::string deep = std::string(33, '(') + "a" + std::string(33, ')');
    EXPECT_EQ(compile_condition(deep), "error: parentheses are nested more than 32 deep");
    EXPECT_EQ(compile_condition(deep.substr(1, 65)), "A");
}

// What is said about an entry of level 05 with these clauses; "" when nothing is.
std::string compile_clauses(const std::string& clauses) {
    const std::string text =
        compile_text("78 five value 5.\n78 two value is five - 3.\n01 rec.\n 05 n pic 99.\n 05 a " +
                     clauses + ".\n");
    const std::size_t error = text.find(" error: ");
    if (error != std::string::npos)
        return text.substr(error + 8, text.find('\n', error) - error - 8);
    const std::size_t warning = text.find(" warning: ");
    if (warning != std::string::npos) {
        return text.substr(warning + 1, text.find('\n', warning) - warning - 1);
    }
    return "";
}

TEST(Entry, ClausesAreTakenInAnyForm) {
    for (const char* clauses : {"value 'a' pic x",
                                "value is -1.5 pic s9v9",
                                "values are zeros pic 9",
                                "value all 'ab' pic x(4)",
                                "pic x(3) value x\"414243\"",
                                "pic x value quote",
                                "pic x(5) value 'a' & x'42' & \"c\"",
                                "pic x value length of rec",
                                "pic x(five)",
                                "pic x occurs two",
                                "pic x occurs 268435456",
                                "pic x occurs 1 to five times depending n of rec",
                                "pic g(4) display-1",
                                "pic 9(2)v99 usage is computational-3",
                                "comp-3 pic s9(3)",
                                "pic s99 trailing separate",
                                "pic s99 sign is leading separate character",
                                "usage index",
                                "binary-long unsigned",
                                "pic x just right synchronized left",
                                "pic 9 blank zeroes",
                                "pic x external global"}) {
        EXPECT_EQ(compile_clauses(clauses), "") << clauses;
    }
}

TEST(Entry, MistakesInClausesNameTheRemedy) {
    const std::string usage =
        " is not supported; describe the bytes of the item with PIC X(n), and "
        "with the directive \"hex\" before it when they are not text";
    const std::pair<const char*, std::string> cases[] = {
        {"pic 9(4) comp-9", "usage COMP-9" + usage},
        {"float-decimal-34", "usage FLOAT-DECIMAL-34" + usage},
        {"usage float-extended", "usage FLOAT-EXTENDED" + usage},
        {"object reference", "usage OBJECT" + usage},
        {"usage is handle of thread", "usage HANDLE" + usage},
        {"pic x occurs unbounded depending on n",
         "a table without a largest size is not supported: give the number of occurrences that a "
         "record has at most"},
        {"pic x occurs 1 to unbounded depending on n",
         "a table without a largest size is not supported: give the number of occurrences that a "
         "record has at most"},
        {"pic x occurs 3 to 2 depending on n", "expected a number greater than 3"},
        {"pic x occurs 268435457", "more than 268435456 occurrences"},
        {"pic x occurs 0", "a table has at least one occurrence"},
        {"pic x occurs 1 to 2", "expected DEPENDING ON, found a period"},
        {"pic x occurs six",
         "expected the number of occurrences, or a constant that has been "
         "defined, found 'SIX'"},
        {"pic s9 sign separate", "expected LEADING or TRAILING, found 'SEPARATE'"},
        {"pic x pic x", "the entry has a PICTURE clause already"},
        {"pic 9 blank when space", "expected ZERO, found 'SPACE'"},
        {"pic x value", "expected a literal, found a period"},
        {"pic x level-guard on", "warning: unknown clause 'LEVEL-GUARD ON' is ignored"},
    };
    for (const auto& [clauses, message] : cases) {
        EXPECT_EQ(compile_clauses(clauses), message) << clauses;
    }
}

// Words that are reserved somewhere serve as names wherever they cannot be meant otherwise.
TEST(Entry, ReservedWordsAreNames) {
    for (const char* word :
         {"RECORD",    "ADDRESS",  "CURRENCY",    "STATUS",       "DATE",    "TIME",    "TYPE",
          "CLASS",     "LINE",     "VALUE",       "INDEX",        "POINTER", "SIGN",    "BLANK",
          "GLOBAL",    "EXTERNAL", "FILE",        "KEY",          "COLUMN",  "REPLACE", "TITLE",
          "DISPLAY-1", "COUNT",    "PICTURE",     "USAGE",        "OCCURS",  "SELECT",  "FLOAT",
          "DOUBLE",    "COMP-1",   "BINARY-LONG", "UNSIGNED-CHAR"}) {
        const std::string text = "01 " + std::string(word) + ".\n 05 " + word + " PIC X.\n";
        EXPECT_EQ(compile_text(text),
                  "1 " + std::string(word) + "\n  5 " + word + " PIC X [alnum length 1]\n");
    }
}

}  // namespace
}  // namespace records
