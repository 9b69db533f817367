// Documents to record files: round trips, other people's documents, and what is refused.

#include <cctype>

#include "tests/command/command_run.h"

namespace {

const std::string COPYBOOK =
    "       01  ITEM.\n"
    "           05  CODE-ID PIC X(4).\n"
    "           05  AMOUNT PIC S9(3).\n"
    "           05  PACKED PIC S9(3) COMP-3.\n"
    "           05  TAG PIC X(2) OCCURS 2.\n";

struct FromXmlCase {
    const char* name;
    std::string document;
    std::vector<std::string> options;
    int status;
    std::string records;            // what standard output gets until the failure, if any
    std::vector<std::string> said;  // in standard error; empty: nothing is said
};

void PrintTo(const FromXmlCase& one, std::ostream* out) {
    *out << one.name;
}

std::string items(const std::string& contents, const std::string& encoding = "UTF-8") {
    return "<?xml version=\"1.0\" encoding=\"" + encoding + "\"?>\n<items>" + contents + "</items>";
}

std::string item(const std::string& contents) {
    return "<item>" + contents + "</item>\n";
}

class FromXmlTest : public CommandTest, public testing::WithParamInterface<FromXmlCase> {};

TEST_P(FromXmlTest, ConvertsOrRefuses) {
    const FromXmlCase& expected = GetParam();
    write_file("items.cpy", COPYBOOK);
    write_file("items.xml", expected.document);
    std::vector<std::string> words = {"from-xml", "items.xml", "items.dat", "--layout",
                                      "items.cpy"};
    words.insert(words.end(), expected.options.begin(), expected.options.end());
    const Outcome outcome = sxml(words);
    EXPECT_EQ(outcome.status, expected.status) << outcome.err;
    EXPECT_EQ(outcome.err.empty(), expected.said.empty()) << outcome.err;
    for (const std::string& text : expected.said) {
        EXPECT_NE(outcome.err.find(text), std::string::npos)
            << "missing: " << text << "\nin: " << outcome.err;
    }
    if (expected.status == 0) {
        EXPECT_TRUE(read_file("items.dat") == expected.records) << read_file("items.dat");
    } else {
        EXPECT_EQ(files(), (std::vector<std::string>{"items.cpy", "items.xml"}));
    }
    // Standard input and output make no difference.
    words[1] = words[2] = "-";
    const Outcome piped = sxml(words, expected.document);
    EXPECT_EQ(piped.status, expected.status);
    EXPECT_TRUE(piped.out == expected.records) << piped.out;
}

const std::string FULL = item(
    "<tag>t1</tag><amount> -12 </amount><packed>7</packed><code_id>AB&amp;</code_id><tag>t2</tag>");
const std::string EMPTY_FIELDS = "    000" + std::string("\x00\x0C", 2) + "    ";
const std::string FULL_RECORD = "AB& 01r" + std::string("\x00\x7C", 2) + "t1t2";

const FromXmlCase CASES[] = {
    {"nothing", items(""), {}, 0, "", {}},
    {"defaults",
     items(FULL + "<item/>"),
     {},
     0,
     FULL_RECORD + EMPTY_FIELDS,
     {"fields without an element in some records, which are blank there: "}},
    {"spaces",
     items(FULL + item("")),
     {"--buffer", "spaces"},
     0,
     FULL_RECORD + std::string(13, ' '),
     {"fields without an element in some records, which are blank there: "}},
    {"zeros", items(item("<code_id/>")), {"--buffer", "zeros"}, 0, std::string(13, '\0'), {}},
    {"keep",
     items(FULL + "<item/>"),
     {"--buffer", "keep"},
     0,
     FULL_RECORD + FULL_RECORD,
     {"fields without an element in some records, which keep there what the record before has: "}},
    {"zeros for what is not there",
     items(FULL + "<item/>"),
     {"--buffer", "zeros"},
     0,
     FULL_RECORD + std::string(13, '\0'),
     {"fields without an element in some records, which hold NUL bytes there: "}},
    {"fewer records than are passed over",
     "<d><note>n</note><page>" + FULL + "</page></d>",
     {"--record", "d/page/item", "--from-record", "9"},
     1,
     "",
     {"1 text outside of the records", ": there is only 1 record\n"}},
    {"lines",
     items(item("<code_id>A</code_id><packed>22</packed><tag> </tag>") + FULL),
     {"--line"},
     0,
     "A   000" + std::string("\x02\x2C\n", 3) + FULL_RECORD + "\n",
     {"fields without an element in some records, which are blank there: "}},
    {"line feed in a line",
     items(item("<code_id>A&#10;B</code_id>")),
     {"--line"},
     1,
     "",
     {"items.xml:2:8: record 1: ", "line feed"}},
    {"latin as it is",
     items(item("<code_id>\xE9</code_id>"), "ISO-8859-1"),
     {},
     0,
     "\xE9" + EMPTY_FIELDS.substr(1),
     {}},
    {"latin to UTF-8",
     items(item("<code_id>\xE9</code_id>"), "iso-8859-1"),
     {"--encoding", "utf-8"},
     0,
     "\xC3\xA9" + EMPTY_FIELDS.substr(2),
     {}},
    {"latin too long in UTF-8",
     items(item("<code_id>abc\xE9</code_id>"), "ISO-8859-1"),
     {"--encoding", "utf-8"},
     0,
     "abc" + EMPTY_FIELDS.substr(3),
     {"record 1, field code_id: a text of 5 bytes was cut to fit into 4: 'abc"}},
    {"UTF-8 to Windows",
     items(item("<code_id>\xE2\x82\xAC</code_id>")),
     {"--encoding", "windows-1252"},
     0,
     "\x80" + EMPTY_FIELDS.substr(1),
     {}},
    {"UTF-8 that fits in ISO-8859-1",
     items(item("<code_id>\xC3\xA9\xC3\xA9 \xC3\xA9</code_id>")),
     {"--encoding", "iso-8859-1"},
     0,
     "\xE9\xE9 \xE9" + EMPTY_FIELDS.substr(4),
     {}},
    {"UTF-8 too long in EBCDIC",
     items(item("<code_id>ab\xC3\xA9g\xC3\xA9</code_id><amount>1</amount>")),
     {"--encoding", "cp037"},
     0,
     "\x81\x82\x51\x87\xF0\xF0\xC1" + std::string("\x00\x0C", 2) + "\x40\x40\x40\x40",
     {"field code_id: a text of 5 bytes was cut to fit into 4: 'ab\xC3\xA9g\xC3\xA9'"}},
    {"longer than the field",
     items(item("<code_id>long one</code_id><tag>ab\xC3\xA9</tag><tag>a\xC3\xA9x</tag>") + FULL),
     {},
     0,
     "long000" + std::string("\x00\x0C", 2) + "aba " + FULL_RECORD,
     {"record 1, field code_id: a text of 8 bytes was cut to fit into 4: 'long one'",
      "field tag(1): a text of 4 bytes", "field tag(2): a text of 4 bytes",
      "items.xml: 3 texts cut to the length of the field\n"}},
    {"longer than the field in ISO-8859-1",
     items(item("<tag>\xE9\xE9\xE9</tag>"), "ISO-8859-1"),
     {},
     0,
     EMPTY_FIELDS.substr(0, 9) + "\xE9\xE9  ",
     {"field tag(1): a text of 3 bytes was cut to fit into 2"}},
    {"many longer than their fields",
     items([] {
         std::string all;
         for (int i = 0; i < 12; ++i) all += item("<code_id>12345</code_id>");
         return all;
     }()),
     {"--buffer", "keep", "--encoding", "iso-8859-1"},
     0,
     [] {
         std::string all;
         for (int i = 0; i < 12; ++i) all += "1234" + EMPTY_FIELDS.substr(4);
         return all;
     }(),
     {"record 10, field", "12 texts cut to the length of the field; the first 10 are"}},
    {"not in the set",
     items(item("<code_id>\xE2\x82\xAC</code_id>")),
     {"--encoding", "cp037"},
     1,
     "",
     {"record 1, field code_id: its character U+20AC is not in cp037"}},
    {"EBCDIC",
     items(FULL),
     {"--encoding", "cp037"},
     0,
     "\xC1\xC2\x50\x40\xF0\xF1\xD2" + std::string("\x00\x7C", 2) + "\xA3\xF1\xA3\xF2",
     {}},
    {"EBCDIC lines", items(""), {"--line", "--encoding", "cp037"}, 2, "", {"of fixed length"}},
    {"no numbers",
     items(item("<amount>x1</amount><packed>123456</packed>")),
     {},
     0,
     "    000" + std::string("\x45\x6C", 2) + "    ",
     {"record 1, field amount", "'x1'", "record 1, field packed", "2 texts"}},
    {"not well-formed",
     items(FULL + FULL + "\n<item>&x;</item>"),
     {},
     1,
     FULL_RECORD + FULL_RECORD,
     {":5:7: undefined entity; 2 records came before"}},
    {"inside a record",
     "<items>" + FULL + "<item><tag>x",
     {},
     1,
     FULL_RECORD,
     {":2:13: no element found"}},
    {"between records",
     "<items>" + FULL,
     {},
     1,
     FULL_RECORD,
     {"no element found; 1 record came before"}},
    {"inside a tag", "<items>" + FULL + "</item", {}, 1, FULL_RECORD, {"unclosed token"}},
    {"after the end", items(FULL) + "<more/>", {}, 1, FULL_RECORD, {"junk after document element"}},
    {"empty", "", {}, 1, "", {":1:1: no element found; 0 records came before"}},
    {"unknown encoding", items("", "x-none"), {}, 1, "", {"unknown encoding"}},
};

INSTANTIATE_TEST_SUITE_P(All, FromXmlTest, testing::ValuesIn(CASES), [](const auto& instance) {
    std::string name = instance.param.name;
    for (char& c : name) {
        if (std::isalnum(static_cast<unsigned char>(c)) == 0) c = '_';
    }
    return name;
});

using OtherDocumentsTest = CommandTest;

// The buffer is cleared, so that a record without its kind is not taken for one of the kind before;
// and the only row of a table is its first, unless the user has chosen how tables are matched.
TEST_F(OtherDocumentsTest, MissingKindsAndSingleRows) {
    write_file("kinds.cpy",
               "      *> sxml: when KIND OF HDR = \"H\"\n"
               "       01  HDR.\n"
               "           05  KIND PIC X.\n"
               "           05  OWNER PIC X(4).\n"
               "      *> sxml: when KIND OF DTL = \"D\"\n"
               "       01  DTL.\n"
               "           05  KIND PIC X.\n"
               "           05  AMOUNT PIC 9(4).\n"
               "           05  ROWS OCCURS 2.\n"
               "               10  QTY PIC 9 OCCURS 2.\n");
    write_file("kinds.xml",
               "<k><hdr><kind>H</kind><owner>me</owner></hdr>"
               "<dtl><kind>D</kind><rows><qty>1</qty><qty>2</qty></rows><amount>12</amount></dtl>"
               "<hdr><owner>you</owner><amount>7</amount></hdr>"
               "<dtl><amount>7</amount><kind>D</kind></dtl></k>");
    struct Case {
        std::vector<std::string> options;
        const char* lines;
    };
    const Case cases[] = {
        {{}, "Hme\nD00121200\n\nD00070000\n"},
        {{"--buffer", "spaces"}, "Hme\nD001212\n\nD0007\n"},
        {{"--buffer", "keep"}, "Hme\nD001212\nD000712\nD000712\n"},
        {{"--set", "SXML_EXACT_TABLE_MATCH=yes"}, "Hme\nD00120000\n\nD00070000\n"},
        {{"--set", "SXML_EXACT_TABLE_MATCH=no"}, "Hme\nD00121220\n\nD00070000\n"},
    };
    for (const Case& c : cases) {
        std::vector<std::string> words = {"from-xml", "kinds",     "out",
                                          "--layout", "kinds.cpy", "--line"};
        words.insert(words.end(), c.options.begin(), c.options.end());
        const Outcome outcome = sxml(words);
        EXPECT_EQ(read_file("out"), c.lines);
        const bool keeps = c.options.size() > 1 && c.options[1] == "keep";
        const std::string warning = "sxml: warning: kinds.xml: ";
        for (const std::string said :
             {"record 3: none of the record layouts' conditions holds\n",
              "1 record of no layout; only the fields that all layouts have were taken\n"}) {
            EXPECT_EQ(outcome.err.find(said) == std::string::npos, keeps) << said << outcome.err;
        }
        EXPECT_NE(
            outcome.err.find("record 3: owner: the text went into no field; by its conditions "
                             "the record does not have the field of this name\n"),
            std::string::npos);
    }
    // The old file stays when a document turns out to be incomplete.
    write_file("kinds.xml", "<k><hdr><kind>H</kind></hdr>");
    EXPECT_EQ(sxml({"from-xml", "kinds.xml", "out", "--layout", "kinds.cpy"}).status, 1);
    EXPECT_EQ(read_file("out"), std::end(cases)[-1].lines);
}

using RoundTripTest = CommandTest;

// Right-justified texts come back at the right end, whatever the character set.
TEST_F(RoundTripTest, RightJustifiedTextsComeBack) {
    write_file("texts.cpy",
               "       01  ROW.\n"
               "           05  NAME PIC X(6) JUSTIFIED RIGHT.\n"
               "           05  CITY PIC X(4) JUST OCCURS 2.\n");
    struct Case {
        const char* encoding;
        std::string records;
    };
    const Case cases[] = {
        {"utf-8", "   abc  \xC3\xA9" + std::string("    abcdef1234   x")},
        {"iso-8859-1", "   abc   \xE9" + std::string("    abcdef1234   x")},
        {"cp037", "\x40\x40\x40\x81\x82\x83\x40\x40\x40\x51\x40\x40\x40\x40"},
    };
    for (const Case& c : cases) {
        write_file("records", c.records);
        const std::vector<std::string> options = {"--layout", "texts.cpy", "--encoding",
                                                  c.encoding};
        for (std::vector<std::string> words :
             {std::vector<std::string>{"to-xml", "records", "records.xml"},
              std::vector<std::string>{"from-xml", "records.xml", "back"}}) {
            words.insert(words.end(), options.begin(), options.end());
            EXPECT_EQ(sxml(words).err, "") << c.encoding;
        }
        EXPECT_TRUE(read_file("back") == c.records) << c.encoding << read_file("back");
    }
}

// Edited numbers stand at the right end of their field.
TEST_F(RoundTripTest, EditedNumbersComeBack) {
    write_file("edited.cpy",
               "       01  ROW.\n"
               "           05  DUE PIC ---9.99.\n"
               "           05  PAID PIC ZZ9.99-.\n"
               "           05  RATE PIC $$$9.9.\n");
    write_file("records",
               "  -1.50  1.50-  $1.5   0.00  0.00   $0.0-123.45999.99-$123.9 -12.34 12.34  $12.0");
    for (const char* encoding : {"utf-8", "cp037"}) {
        const std::string wanted = run({"iconv", "-t", encoding}, read_file("records")).out;
        write_file("in", wanted);
        const std::vector<std::string> options = {"-l", "edited.cpy", "--encoding", encoding};
        for (std::vector<std::string> words :
             {std::vector<std::string>{"to-xml", "in", "in.xml"}, {"from-xml", "in.xml", "back"}}) {
            words.insert(words.end(), options.begin(), options.end());
            EXPECT_EQ(sxml(words).err, "") << encoding;
        }
        EXPECT_EQ(read_file("back"), wanted) << encoding;
        EXPECT_NE(read_file("in.xml").find("<due>-123.45</due>"), std::string::npos);
    }
}

// A table's only entry gives its elements no number, and those of its own tables lack it.
TEST_F(RoundTripTest, TablesInTheOnlyEntryComeBack) {
    write_file("lines.cpy",
               "       01  ORDER-REC.\n"
               "           05  ORDER-ID PIC X(2).\n"
               "           05  LINE-COUNT PIC 9.\n"
               "           05  ORDER-LINE OCCURS 0 TO 3 DEPENDING ON LINE-COUNT.\n"
               "               10  SHADE PIC X(2) OCCURS 2.\n"
               "               10  QTY PIC 9.\n");
    const std::string records =
        "A11a b 5    0    0"
        "A23a b 5c d 6e f 7"
        "A31  x 0    0    0"
        "A40    0    0    0"
        "A52p   1q   2    0"
        "A61    9    0    0";
    write_file("lines.dat", records);
    ASSERT_EQ(sxml({"to-xml", "lines.dat", "lines.xml", "--layout", "lines.cpy"}).status, 0);
    const std::vector<std::string> back = {"from-xml", "lines.xml", "back.dat", "--layout",
                                           "lines.cpy"};
    const Outcome outcome = sxml(back);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(read_file("back.dat"), records);
    // An explicit choice takes precedence.
    std::vector<std::string> exact = back;
    exact.insert(exact.end(), {"--set", "SXML_EXACT_TABLE_MATCH=yes"});
    EXPECT_EQ(sxml(exact).status, 0);
    EXPECT_EQ(read_file("back.dat").substr(0, 18), "A11    5    0    0");
}

TEST_F(RoundTripTest, SampleFilesComeBackByteForByte) {
    struct Case {
        const char* program;
        std::vector<std::string> options;
    };
    const Case cases[] = {
        {"write_orders", {"--layout", EXAMPLES + "orders.cpy"}},
        {"write_ledger", {"--layout", EXAMPLES + "write_ledger.cbl", "--fd", "LEDGER"}}};
    for (const Case& c : cases) {
        const std::string program = c.program;
        ASSERT_EQ(
            run({"cobc", "-x", "-I", EXAMPLES, "-o", program, EXAMPLES + program + ".cbl"}).status,
            0);
        ASSERT_EQ(run({"./" + program, "records"}).status, 0);
        std::vector<std::string> words = {"to-xml", "records", "records.xml"};
        words.insert(words.end(), c.options.begin(), c.options.end());
        EXPECT_EQ(sxml(words).err, "");
        words[0] = "from-xml";
        words[1] = "records.xml";
        words[2] = "back";
        EXPECT_EQ(sxml(words).err, "");
        EXPECT_TRUE(read_file("back") == read_file("records")) << program;
        words[1] = "-";
        words[2] = "from_pipe";
        EXPECT_EQ(sxml(words, read_file("records.xml")).err, "");
        EXPECT_TRUE(read_file("from_pipe") == read_file("records")) << program;
    }
}

}  // namespace
