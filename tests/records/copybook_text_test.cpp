// Source formats, comments, continuation, COPY and REPLACE.
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/records/compile_text.h"
#include "tests/support/scratch_folder.h"

namespace records {
namespace {

const std::string ONE_ITEM = "1 A\n  5 B PIC X [alnum length 1]\n";

std::string blanks(std::size_t count) {
    return std::string(count, ' ');
}

TEST(SourceText, FormatIsFoundOut) {
    const std::string texts[] = {
        "01 A.\n05 B PIC X.\n",
        "       01 A.\n           05 B PIC X.\n",
        "000100 01 A.\n000200     05 B PIC X.\n",
        "   100 01 A.\n   200     05 B PIC X.\n",
        "CR1987 01 A.\nCR1987     05 B PIC X.\n",
        "      *COMMENT\n       01 A." + blanks(60) + "COLUMN73\n           05 B PIC X.\n",
        // Text after column 80 is not on a punched card: there is no right margin.
        "       01 A.\n           05 B" + blanks(69) + "PIC X.\n",
        "      *COMMENT\n       01 A.\n           05 B" + blanks(70) + "PIC X.\n",
        "       01 A.\n*> COMMENT IN COLUMN 1\n         05 B\n  PIC\n   X.\n",
        "* COMMENT IN COLUMN 1\n01 A.\n  05 B PIC X.\n",
        ">>SOURCE FORMAT FREE\n01 A.\n05 B PIC X.\n",
        "       >>SOURCE FORMAT IS FREE\n       01 A.\n           05 B" + blanks(69) + "PIC X.\n",
        "      $SET SOURCEFORMAT(FREE)\n01 A.\n05 B PIC X.\n",
        "01 A.\n>>SOURCE FORMAT FIXED\n000100     05 B PIC X.\n",
        "      DATA DIVISION.\n WORKING-STORAGE SECTION.\n 01 A.\n  05 B PIC X.\n",
        "01 A. *> sxml without a colon\n>>D 05 C PIC X.\n05 B PIC X.\n",
        "\t01\tA.\n\t\t05 B\tPIC X.\n",
        // Stars from column 1 to 7 and beyond are a comment in both formats.
        "***********\n      * COMMENT\n***********\n***********\n       01 A.\n           05 B PIC "
        "X.\n",
        "***********\n01 A.\n***********\n05 B PIC X.\n",
        // Numbers in columns 73 to 80 are on cards; one stray line is not.
        "       01 A." + blanks(60) + "00000100\n" + "           05 B PIC X." + blanks(50) +
            "00000200\n* STRAY\n",
        "01 A.\r\n05 B PIC X.\r\n\x1a",
        "01 A;\n\f05 B, PIC X.\n",
    };
    for (const std::string& text : texts) {
        std::string expected = ONE_ITEM;
        if (text.find("A;") != std::string::npos) {
            expected +=
                "test.cpy:2:2: error: expected a period at the end of the entry before this "
                "one\n     05 B, PIC X.\n     ^\n";
        }
        EXPECT_EQ(compile_text(text), expected) << text;
    }
}

// Lines that tell different formats: when reading fails, the message says how to choose.
TEST(SourceText, DisputedFormatIsToldWithTheRemedy) {
    const std::string free = "* A\n* B\n      * C\n       01 A.\n      - PIC X.\n* D\n";
    EXPECT_NE(compile_text(free).find("test.cpy: note: most lines look like free format, but some "
                                      "like fixed; to read columns 8 to 72 only, give --format "
                                      "fixed\n"),
              std::string::npos)
        << compile_text(free);
    const std::string fixed = "000100 01 A.\n000200     05 B PIC Q.\n05 C PIC X.\n";
    EXPECT_NE(compile_text(fixed).find("give --format free"), std::string::npos);
    CopybookOptions chosen;
    chosen.format = SourceFormat::fixed;
    EXPECT_EQ(compile_text(fixed, chosen).find("note:"), std::string::npos);
}

TEST(SourceText, OptionsChooseTheFormat) {
    const std::string long_line =
        "       01 A.\n           05 B PIC X                                                   "
        "(3).\n";
    CopybookOptions options;
    options.format = SourceFormat::fixed;
    EXPECT_NE(compile_text(long_line, options).find("expected a period"), std::string::npos);
    const std::string debugging = "       01 A.\n      D    05 B PIC X.\n";
    options.debugging_lines = true;
    EXPECT_EQ(compile_text(debugging, options), ONE_ITEM);
    options.debugging_lines = false;
    EXPECT_EQ(compile_text(debugging, options), "1 A\n");
    options.format = SourceFormat::free;
    EXPECT_EQ(compile_text("       01 A.\n         05 B PIC X.\n", options), ONE_ITEM);
    options.tab_width = 4;
    options.format = SourceFormat::fixed;
    EXPECT_EQ(compile_text("\t\t01 A.\n\t\t\t05 B PIC X.\n", options), ONE_ITEM);
}

// COPY looks for files in folders of its own, made for each test.
class Copy : public testing::Test {
  protected:
    Copy() {
        std::filesystem::create_directories(folder_ / "first" / "Lib");
        std::filesystem::create_directories(folder_ / "second");
        options_.copy_path = {folder_ / "first", folder_ / "second"};
    }
    void write(const std::string& file, const std::string& text) {
        write_file(scratch_.file(file), text);
    }

    const ScratchFolder scratch_;
    const std::filesystem::path& folder_ = scratch_.path();
    CopybookOptions options_;
};

TEST_F(Copy, FindsFiles) {
    write("first/ITEM.CPY", "05 b pic x.\n");
    write("second/item.cpy", "05 wrong pic x.\n");
    write("second/other.Cob", "05 b pic x.\n");
    write("second/plain", "05 b pic x.\n");
    write("first/Lib/item.copy", "05 c pic x.\n");
    const std::string with_c = "1 A\n  5 C PIC X [alnum length 1]\n";
    const std::string cases[][2] = {
        {"copy item.", ONE_ITEM},
        {"COPY \"item.cpy\".", ONE_ITEM},
        {"copy 'ITEM' suppress.", ONE_ITEM},
        {"copy item.cpy.", ONE_ITEM},
        {"copy other.", ONE_ITEM},
        {"copy plain.", ONE_ITEM},
        {"copy item in lib.", with_c},
        {"copy item of \"LIB\".", with_c},
        {"copy plain in lib.", ONE_ITEM},
        {"copy 'Lib\\item'.", with_c},
        {"copy \"" + (folder_ / "second" / "plain").string() + "\".", ONE_ITEM},
        {"exec sql include item end-exec.", ONE_ITEM},
        {"exec sql include sqlca end-exec 05 b pic x.", ONE_ITEM},
    };
    for (const auto& [statement, expected] : cases) {
        EXPECT_EQ(compile_text("01 a.\n" + statement + "\n", options_), expected) << statement;
    }
}

TEST_F(Copy, LooksInTheIncludingFilesFolderFirst) {
    write("main.cpy", "01 a.\ncopy 'first/Lib/outer'.\n");
    write("first/Lib/outer.cpy", "copy inner.\n");
    write("first/Lib/inner.cpy", "05 b pic x.\n");
    write("first/inner.cpy", "05 wrong pic x.\n");
    EXPECT_EQ(compile_file(folder_ / "main.cpy", options_), ONE_ITEM);
}

TEST_F(Copy, Replaces) {
    const std::string cases[][3] = {
        {"05 :x: pic x.", "==:x:== by ==b==", "B"},
        {"05 p-:x:-s pic x.", "==:X:== by ==mid==", "P-MID-S"},
        {"05 :x:s pic x.", "==:x:== by ====", "S"},
        {"05 old-s pic x.", "leading ==old== by ==new==", "NEW-S"},
        {"05 s-old pic x.", "trailing ==-old== by ====", "S"},
        {"05 old pic x.", "old by new", "NEW"},
        {"05 old-s pic x.", "old by new", "OLD-S"},
        {"05 b, pic x value 'b'.", "'b' by 'c' b by c", "C"},
        {"05 b pic x.", "==b pic== by ==c pic==", "C"},
        {"05 b pic 9(4).", "==9(4)== by ==x==", "B"},
        {"05 b\n pic 9.", "==b Pic 9.== by ==c pic x.==", "C"},
        {"05 one pic x.", "one by two two by three", "TWO"},
    };
    for (const auto& [text, rules, name] : cases) {
        write("first/text.cpy", text + "\n");
        EXPECT_EQ(compile_text("01 a.\ncopy text replacing " + rules + ".\n", options_),
                  "1 A\n  5 " + name + " PIC X [alnum length 1]\n")
            << rules;
    }
}

TEST_F(Copy, ReplacesInDirectivesAndInNestedCopies) {
    write("first/inner.cpy", "*> sxml: when :x:-kind = 'A'\n05 :x:-item pic x.\n");
    write("first/outer.cpy", "05 :x:-kind pic x.\ncopy inner.\n");
    EXPECT_EQ(compile_text("01 a.\ncopy outer replacing ==:x:== by ==in==.\n", options_),
              "1 A\n  5 IN-KIND PIC X [alnum length 1]\n"
              "  5 IN-ITEM PIC X [alnum length 1] when (IN-KIND = 'A')\n");
}

TEST_F(Copy, MistakesAreReported) {
    write("first/x.cpy", "05 b pic x.\n");
    write("first/self.cpy", "copy self.\n");
    const std::string at = "test.cpy:2:";
    const std::string cases[][2] = {
        {"copy.", "1: error: expected the name of a copybook after COPY"},
        {"copy x", "1: error: expected a period at the end of COPY x"},
        {"copy x replacing.", "17: error: expected text to replace"},
        {"copy x replacing a.", "19: error: expected BY and the new text"},
        {"copy x replacing ==== by ==b==.", "18: error: the text to replace is empty"},
        {"copy x replacing ==a by b.", "18: error: the pseudo-text is not closed: expected =="},
        {"copy x replacing leading ==a b== by ==b==.",
         "26: error: LEADING and TRAILING replace a part of one word by a part of one word"},
        {"copy lib.", "1: error: copybook 'lib' was not found; looked in "},
        {"exec sql select.", "1: error: EXEC is not closed: expected END-EXEC"},
    };
    for (const auto& [statement, message] : cases) {
        const std::string result = compile_text("01 a.\n" + statement + "\n", options_);
        EXPECT_NE(result.find(at + message), std::string::npos) << result;
    }
    EXPECT_NE(compile_text("01 a.\ncopy self.\n", options_).find("copybook 'self' copies itself"),
              std::string::npos);
}

// Copies that multiply: the text has an end, and so has the nesting.
TEST_F(Copy, SizeAndDepthAreLimited) {
    for (int i = 0; i < 70; ++i) {
        const std::string next = "copy deep" + std::to_string(i + 1) + ".\n";
        write("first/deep" + std::to_string(i) + ".cpy", next);
        write("first/wide" + std::to_string(i) + ".cpy",
              "copy wide" + std::to_string(i + 1) + ". copy wide" + std::to_string(i + 1) + ".\n");
    }
    EXPECT_NE(compile_text("01 a.\ncopy deep0.\n", options_).find("nested more than 64 deep"),
              std::string::npos);
    EXPECT_NE(compile_text("01 a.\ncopy wide50.\n", options_).find("the text is too large"),
              std::string::npos);
}

}  // namespace
}  // namespace records
