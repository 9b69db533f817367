// What a copybook does not say itself: conditions, names and hidden items from the command line,
// and several copybooks for one file.

#include "tests/command/command_run.h"

namespace {

class DirectivesTest : public CommandTest {
  protected:
    void SetUp() override {
        CommandTest::SetUp();
        write_file(
            "head.cpy",
            "       01  HEAD.\n           05  KIND PIC X.\n           05  DAY-NO PIC 9(3).\n");
        write_file("line.cpy",
                   "       01  LINE-REC.\n           05  KIND PIC X.\n"
                   "           05  PERSON.\n               10  AGE PIC 9(2).\n"
                   "               10  FILLER PIC X.\n"
                   "           05  FIRM REDEFINES PERSON.\n               10  TAX PIC X(3).\n");
        write_file("in", "H321P42 F7a9");
    }
    // What is after the comment with the date.
    static std::string records_of(const std::string& file) {
        const std::string text = read_file(file);
        return text.substr(text.find("-->\r\n<"));
    }
};

const std::vector<std::string> GIVEN = {"--when", "HEAD: KIND = \"H\"",
                                        "--when", "PERSON: KIND OF LINE-REC = \"P\"",
                                        "--when", "FIRM: KIND OF LINE-REC = 'F'",
                                        "--when", "LINE-REC: KIND <> \"H\"",
                                        "--name", "TAX OF FIRM=tax_id",
                                        "--name", "all",
                                        "--hide", "DAY-NO"};

// The command line says what directives would; a description file keeps it.
TEST_F(DirectivesTest, AreGivenAndKept) {
    std::vector<std::string> words = {"to-xml",   "in",       "out.xml",
                                      "-l",       "head.cpy", "-l",
                                      "line.cpy", "--set",    "SXML_CREATE_STYLE=NONE"};
    words.insert(words.end(), GIVEN.begin(), GIVEN.end());
    const Outcome outcome = sxml(words);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    const std::string document = records_of("out.xml");
    EXPECT_NE(document.find(
                  "<all>\r\n <head>\r\n  <kind>H</kind>\r\n  <filler></filler>\r\n </head>\r\n"),
              std::string::npos)
        << document << outcome.err;
    EXPECT_NE(document.find("<age>42</age>"), std::string::npos) << document;
    EXPECT_NE(document.find("<tax_id>7a9</tax_id>"), std::string::npos) << document;
    EXPECT_EQ(document.find("321"), std::string::npos) << document;

    std::vector<std::string> compiling = {"compile", "head.cpy", "line.cpy", "-o", "all.xfd"};
    compiling.insert(compiling.end(), GIVEN.begin(), GIVEN.end());
    EXPECT_EQ(sxml(compiling).status, 0);
    EXPECT_EQ(
        sxml({"to-xml", "in", "again.xml", "-l", "all.xfd", "--set", "SXML_CREATE_STYLE=NONE"}).err,
        "");
    EXPECT_EQ(records_of("again.xml"), document);
    EXPECT_EQ(sxml({"from-xml", "out.xml", "back", "-l", "all.xfd"}).status, 0);
    EXPECT_EQ(read_file("back"), "H   P42 F7a9");
}

// A condition from the command line takes the place of the copybook's.
TEST_F(DirectivesTest, TakeThePlaceOfThoseInTheSource) {
    write_file("head.cpy",
               "      *> sxml: when KIND = \"X\"\n"
               "       01  HEAD.\n           05  KIND PIC X.\n           05  DAY-NO PIC 9(3).\n"
               "       01  REST.\n           05  KIND PIC X.\n           05  BODY PIC X(3).\n");
    write_file("in", "H321Xabc");
    EXPECT_EQ(
        sxml({"to-xml", "in", "out.xml", "-l", "head.cpy", "--when", "head: kind = 'H'"}).status,
        0);
    const std::string document = records_of("out.xml");
    EXPECT_NE(document.find("<day_no>321</day_no>"), std::string::npos) << document;
    EXPECT_NE(document.find("<body>abc</body>"), std::string::npos) << document;
}

TEST_F(DirectivesTest, AreRefusedWhereTheyCannotBeMeant) {
    ASSERT_EQ(sxml({"compile", "head.cpy", "-o", "head.xfd"}).status, 0);
    const struct {
        std::vector<std::string> options;
        int status;
        const char* said;
    } cases[] = {
        {{"--when", "NOBODY: KIND = 'H'"}, 1, "there is no item of this name"},
        {{"-l", "line.cpy", "--hide", "KIND"}, 1, "there are several items of this name"},
        {{"--when", "HEAD"}, 2, "--when HEAD: name the record or item and its condition"},
        {{"--when", "HEAD: KIND = "}, 1, "HEAD: when KIND ="},
        {{"--when", "HEAD: SORT = 'H'"}, 1, "SORT"},
        {{"--name", "KIND=1st"}, 1, "expected a name for XML"},
        {{"--name", "KIND=a hide"}, 1, "expected the end of the directive"},
        {{"-l", "none.cpy"}, 1, "none.cpy"},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.options.back());
        std::vector<std::string> words = {"to-xml", "in", "out.xml", "-l", "head.cpy"};
        words.insert(words.end(), one.options.begin(), one.options.end());
        const Outcome outcome = sxml(words);
        EXPECT_EQ(outcome.status, one.status);
        EXPECT_NE(outcome.err.find(one.said), std::string::npos) << outcome.err;
    }
    const Outcome compiled = sxml({"to-xml", "in", "out.xml", "-l", "head.xfd", "--hide", "KIND"});
    EXPECT_EQ(compiled.status, 1);
    EXPECT_NE(compiled.err.find("head.xfd is a description file"), std::string::npos)
        << compiled.err;
}

}  // namespace
