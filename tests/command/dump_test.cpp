// sxml dump: what a person sees of a record.

#include "tests/command/command_run.h"

namespace {

const std::string COPYBOOK =
    "      *> sxml: when KIND = \"H\"\n"
    "       01  HDR.\n"
    "           05  KIND PIC X.\n"
    "           05  FILLER PIC X(2).\n"
    "           05  AMOUNT PIC S9(5)V99 COMP-3.\n"
    "           05  NAME PIC X(18).\n"
    "      *> sxml: when KIND2 = \"T\"\n"
    "       01  TRL.\n"
    "           05  KIND2 PIC X.\n"
    "      *> sxml: hex\n"
    "           05  RAW PIC X(4).\n"
    "           05  RATE PIC S9(4) COMP OCCURS 2.\n";

const std::string RECORDS = std::string("H--\x00\x12\x34\x5D", 7) + "\xC3\x85se \x01 " +
                            std::string(11, ' ') +
                            std::string("T\x01\x02\x03\xFF\x00\x07\xFF\xFE", 9) +
                            std::string(16, 'x') + "?  ABCD" + std::string(18, ' ');

const std::string FIRST =
    "Record 1, byte offset 0, 25 bytes, hdr\n"
    "Offset  Bytes                                            Field       Picture          Value\n"
    "     0  48                                               kind        X                'H'\n"
    "     1  2D 2D                                            (no field)\n"
    "     3  00 12 34 5D                                      amount      S9(5)V99 COMP-3  "
    "-123.45\n"
    "     7  C3 85 73 65 20 01 20 20 20 20 20 20 20 20 20 20  name        X(18)            'Åse "
    ".'\n"
    "    23  20 20\n";

class DumpTest : public CommandTest {
  protected:
    void SetUp() override {
        CommandTest::SetUp();
        write_file("r.cpy", COPYBOOK);
        write_file("r.dat", RECORDS);
    }
    static Outcome dump(std::vector<std::string> options) {
        std::vector<std::string> words = {"dump", "r.dat", "-l", "r.cpy"};
        words.insert(words.end(), options.begin(), options.end());
        return sxml(words);
    }
    // The output has these lines, each without the blanks between its columns.
    static void expect_lines(const std::string& text, const std::vector<std::string>& lines) {
        for (const std::string& line : lines) {
            EXPECT_NE(text.find(line), std::string::npos) << "missing: " << line << "\nin:\n"
                                                          << text;
        }
    }
};

TEST_F(DumpTest, ShowsFieldsBytesAndValues) {
    const Outcome first = dump({"--record", "1"});
    EXPECT_EQ(first.status, 0) << first.err;
    EXPECT_EQ(first.out, FIRST);
    const Outcome rest = dump({"--record", "2-"});
    EXPECT_EQ(rest.status, 0) << rest.err;
    expect_lines(rest.out, {"Record 2, byte offset 25, 25 bytes, trl\n", "01 02 03 FF  ",
                            "rate(1)     S9(4) COMP       7\n", "rate(2)     S9(4) COMP       -2\n",
                            "Record 3, byte offset 50, 25 bytes, of no layout; shown as hdr\n",
                            "not a number\n"});
    EXPECT_EQ(rest.out.find(FIRST.substr(0, 8)), std::string::npos);
}

TEST_F(DumpTest, ReadsEbcdic) {
    write_file("e.cpy", "       01 R.\n           05 N PIC S99.\n           05 T PIC X(4).\n");
    write_file("r.dat", "\xF1\xD2\xC1\x4A\x40\x40");
    const Outcome outcome = sxml({"dump", "r.dat", "-l", "e.cpy", "--encoding", "cp037"});
    const Outcome latin =
        sxml({"dump", "r.dat", "-l", "e.cpy", "--set", "SXML_ENCODING=ISO-8859-1"});
    expect_lines(latin.out, {"X(4)     'ÁJ@@'\n"});
    expect_lines(outcome.out, {"S99      -12\n", "X(4)     'A¢'\n"});
}

TEST_F(DumpTest, RefusesWhatCannotBeShown) {
    struct Case {
        std::vector<std::string> options;
        int status;
        std::string said;
    };
    const Case cases[] = {
        {{"--record", "2-1"}, 2, "name a record by its number"},
        {{"--record", "0"}, 2, "name a record by its number"},
        {{"--record", "2x"}, 2, "name a record by its number"},
        {{"--record", "4"}, 1, "r.dat: there are only 3 records"},
        {{"--encoding", "cp1"}, 2, "--encoding"},
    };
    for (const Case& one : cases) {
        const Outcome outcome = dump(one.options);
        EXPECT_EQ(outcome.status, one.status) << one.said;
        EXPECT_NE(outcome.err.find(one.said), std::string::npos) << outcome.err;
    }
    write_file("r.dat", RECORDS + "half");
    EXPECT_EQ(dump({}).status, 1);
    EXPECT_EQ(dump({"--record", "1-3"}).status, 0) << "what lies after the records is not read";
}

}  // namespace
