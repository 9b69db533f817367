// Whole copybooks and programs: each file of copybooks/ against its expected tree and messages.
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>

#include "tests/records/compile_text.h"
#include "tests/support/scratch_folder.h"

namespace records {
namespace {

struct FileCase {
    const char* file;
    const char* fd;
    const char* expected;
};

TEST(Copybook, FilesGiveTheirTrees) {
    // Messages name files as they were opened, so the test goes where they are.
    ASSERT_EQ(chdir(SXML_SOURCE_DIR "/tests/records/copybooks"), 0);
    constexpr FileCase cases[] = {
        {"policy.cpy", "", "policy.tree"},
        {"order-line.cpy", "", "order-line.tree"},
        {"tabs.cpy", "", "tabs.tree"},
        {"replace.cob", "", "replace.tree"},
        {"everything.cpy", "", "everything.tree"},
        {"everything.cpy", "LONE", "everything-lone.tree"},
        {"mistakes.cpy", "", "mistakes.tree"},
        {"invoice.cbl", "", "invoice.tree"},
        {"invoice.cbl", "INVOICES", "invoice-invoices.tree"},
        {"invoice.cbl", "payments", "invoice-payments.tree"},
        {"invoice.cbl", "SORT-FILE", "invoice-sort.tree"},
        {"invoice.cbl", "Host-Row", "invoice-host-row.tree"},
        {"invoice.cbl", "UNUSED-AREA", "invoice-unused.tree"},
        {"invoice.cbl", "NO-SUCH", "invoice-no-such.tree"},
        {"storage.cbl", "", "storage.tree"},
    };
    for (const FileCase& test : cases) {
        CopybookOptions options;
        options.fd = test.fd;
        options.copy_path = {"copylib"};
        EXPECT_EQ(compile_file(test.file, options), read_file(test.expected)) << test.expected;
    }
}

// A record that redefines another can be chosen like any.
TEST(Copybook, ARedefinitionIsTakenAlone) {
    CopybookOptions options;
    options.fd = "B";
    EXPECT_EQ(
        compile_text("data division.\n01 a pic x.\n01 b redefines a.\n 05 c pic x.\n"
                     " 05 d redefines c pic 9.\n",
                     options),
        "1 B\n  5 C PIC X [alnum length 1]\n  5 D REDEFINES C PIC 9 [num digits 1 length 1]\n");
}

TEST(Copybook, UnreadableFilesAreReported) {
    EXPECT_EQ(compile_file("/no/such/file.cpy"),
              "nothing\n/no/such/file.cpy: error: cannot read the file: "
              "No such file or directory\n");
    EXPECT_EQ(compile_file("/"), "nothing\n/: error: cannot read the file: it is a folder\n");
    EXPECT_EQ(compile_text(""), "nothing\ntest.cpy: error: there is no data description in it\n");
}

// Each text would take minutes, memory without end or the stack, if any stage were not linear.
TEST(Copybook, HostileTextEndsSoon) {
    const auto repeat = [](const std::string& text, int times) {
        std::string out;
        for (int i = 0; i < times; ++i) out += text;
        return out;
    };
    const std::string texts[] = {
        "*> sxml: when " + repeat("(", 25'000) + "\n01 a pic x.\n",
        "*> sxml: when " + repeat("not ", 25'000) + "a\n01 a pic x.\n",
        "*> sxml: when a = 1" + repeat("\n*> sxml: and b = 2", 12'000) + "\n01 a pic x.\n",
        "01 a pic " + repeat("x(", 25'000) + ".\n",
        "01 a.\n 05 b pic x.\n" + repeat(" 05 c redefines b pic x.\n", 5'000),
        "01 a.\n" + repeat(" 05 b pic x\n", 12'000),
        "01 a. 05 b pic x value '" + repeat("x", 1'000'000),
        "       01 A.\n" + repeat("      -    B\n      * c\n", 12'000),
        repeat("       EXEC SQL\n", 12'000),
        "replace ==a== by ==" + repeat("a ", 12'000) + "==.\n" + repeat("a ", 12'000),
        "replace ==" + repeat("a ", 1'000) + "b== by ==c==.\n01 r.\n" + repeat("a ", 25'000),
        repeat("COPY ", 12'000),
        "       DATA DIVISION.\n       X DIVISION.\n       FD.\n       3)\n           05  A\n",
        repeat("fd x. ", 12'000),
    };
    for (const std::string& text : texts) {
        const auto start = std::chrono::steady_clock::now();
        Diagnostics diagnostics;
        parse_copybook_text(text, "hostile.cpy", {}, diagnostics);
        const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
        EXPECT_LE(diagnostics.all().size(), 200U) << text.substr(0, 40);
        EXPECT_LT(time.count(), 10.0) << text.substr(0, 40);
    }
}

TEST(Copybook, AtMostAHundredErrorsAreShown) {
    std::string text = "01 a.\n";
    for (int i = 0; i < 150; ++i) text += " 05 b pic q.\n";
    Diagnostics diagnostics;
    parse_copybook_text(text, "many.cpy", {}, diagnostics);
    EXPECT_EQ(diagnostics.all().size(), 100U);
    EXPECT_NE(diagnostics.text().find("note: 50 more errors not shown\n"), std::string::npos);
}

}  // namespace
}  // namespace records
