// Losses of a conversion are reported, and records that cannot be converted can be put aside.

#include <filesystem>
#include <random>

#include "tests/command/command_run.h"

namespace {

const std::string COPYBOOK =
    "       01  ITEM.\n"
    "           05  CODE-ID PIC X(4).\n"
    "           05  AMOUNT PIC S9(3).\n"
    "           05  WHERE.\n"
    "               10  CITY PIC X(6).\n"
    "           05  TAG PIC X(2) OCCURS 2.\n";

const std::string WHOLE =
    "<item><code_id>AB</code_id><amount>12</amount><where><city>Bonn</city></where><tag>a</tag>"
    "<tag>b</tag></item>\n";

struct LossCase {
    const char* name;
    std::string document;
    int status;
    std::vector<std::string> said;
};

void PrintTo(const LossCase& one, std::ostream* out) {
    *out << one.name;
}

class LossTest : public CommandTest, public testing::WithParamInterface<LossCase> {};

TEST_P(LossTest, IsTold) {
    const LossCase& expected = GetParam();
    write_file("i.cpy", COPYBOOK);
    write_file("d.xml", expected.document);
    const Outcome outcome = sxml({"from-xml", "d.xml", "d.dat", "-l", "i.cpy"});
    EXPECT_EQ(outcome.status, expected.status) << outcome.err;
    for (const std::string& text : expected.said) {
        EXPECT_NE(outcome.err.find(text), std::string::npos) << text << "\nin: " << outcome.err;
    }
    const Outcome strict = sxml({"from-xml", "d.xml", "s.dat", "-l", "i.cpy", "--strict"});
    EXPECT_EQ(strict.status, 1) << strict.err;
    const Outcome quiet = sxml({"from-xml", "d.xml", "-", "-l", "i.cpy", "--quiet"});
    EXPECT_EQ(quiet.err.find("record 1"), std::string::npos) << quiet.err;
    EXPECT_NE(quiet.err, "");
}

// In UTF-16, least significant byte first.
std::string wide(const std::string& ascii) {
    std::string text = "\xFF\xFE";
    for (const char c : ascii) text += {c, '\0'};
    return text;
}

const LossCase LOSSES[] = {
    {"another kind of document",
     "<html><head><title>T</title></head><body><p>text</p></body></html>",
     1,
     {"d.xml:1:13: record 1: title: the text went into no field; no field has this name",
      "d.xml: no field of any record was filled; does the layout describe this document?"}},
    {"prefixes",
     "<d>\n<a:item><a:code_id>AB</a:code_id></a:item></d>",
     1,
     {"d.xml:2:9: record 1: a:code_id: ", "a:code_id: 1 not used; without its prefix"}},
    {"attributes",
     "<d><item code_id=\"AB\" amount=\"2\"/></d>",
     1,
     {"d.xml:1:4: record 1: item/@*: attributes went into no field", "--attributes"}},
    {"a level deeper",
     "<d><batch>" + WHOLE + WHOLE + "</batch></d>",
     1,
     {"item/code_id: 2 not used; the records seem to be one level deeper"}},
    {"misspelt",
     "<d>" + WHOLE + "<item><code_id>C</code_id><ammount>1</ammount></item></d>",
     0,
     {"d.xml:2:27: record 2: ammount: the text went into no field; no field has this name",
      "d.xml: ammount: 1 not used\n",
      "fields without an element in some records, which are blank there: amount (1), city (1)"}},
    {"spelt without underscores",
     "<d><item><CodeId>AB</CodeId></item></d>",
     1,
     {"codeid: 1 not used; a field's name differs in case, hyphens or underscores only"}},
    {"twice",
     "<d><item><code_id>A</code_id><amount>1</amount><amount>2</amount></item></d>",
     0,
     {"record 1: amount: the text went into no field; there are more", "amount: 2 not used"}},
    {"too many rows",
     "<d><item><tag>a</tag><tag>b</tag><tag>c</tag></item></d>",
     0,
     {"d.xml:1:34: record 1: tag: the text went into no field; there are more"}},
    {"decimals",
     "<d><item><amount>1.50</amount></item><item><amount>2.0</amount></item>"
     "<item><amount>15e-1</amount></item></d>",
     0,
     {"record 1, field amount: more decimals or low-order digits than the field holds, which were "
      "cut: '1.50'",
      "record 3, field amount: more", "2 texts of numeric fields that the fields cannot hold"}},
    {"entities elsewhere",
     "<!DOCTYPE d [<!ENTITY here 'Bonn'><!ENTITY code SYSTEM 'code.txt'>]>\n"
     "<d><item><code_id>&code;</code_id><where><city>&here;</city></where></item></d>",
     0,
     {"d.xml:2:19: the entity code is outside of the document and is not read; its text is "
      "missing"}},
    {"entities of a DTD elsewhere",
     "<!DOCTYPE d SYSTEM 'd.dtd'>\n<d><item><code_id>&code;</code_id><amount>1</amount></item></d>",
     0,
     {"d.xml:2:19: the entity code is outside"}},
    {"entities in attributes",
     "<!DOCTYPE d SYSTEM 'd.dtd' [<!ENTITY here 'at &there;'>]>\n"
     "<d><item a='&lt;&#65;&code;'><code_id b='&here;'>A</code_id></item></d>",
     0,
     {"d.xml:2:4: the entity code is outside", "d.xml:2:30: the entity there is outside"}},
    {"entities in attributes of wide characters",
     wide("<!DOCTYPE d SYSTEM 'd.dtd'>\n<d><item><code_id a='&code;'>A</code_id></item></d>"),
     0,
     {"the entity code is outside"}},
    {"characters that the encoding lacks",
     "<?xml version='1.0' encoding='iso-8859-1'?><!DOCTYPE d [<!ENTITY e '&#x141;'>]>\n"
     "<d><item a='&#300;&#255;'><code_id>\xE4&#x1F600;&e;&#xFF;</code_id></item></d>",
     0,
     {"d.xml:2:4: the character U+012C is lost, because the document declares ISO-8859-1",
      "d.xml:2:37: the character U+1F600 is lost", "d.xml:2:46: the character U+0141 is lost"}},
    {"control characters in a message",
     "<?xml version='1.0' encoding='ISO-8859-1'?>\n<d><item><tag>a\n\x85\xE4</tag></item></d>",
     0,
     {": a text of 4 bytes was cut to fit into 2: 'a..\xC3\xA4'\n"}},
    {"text in a group",
     "<d><item><code_id>A</code_id><where>Bonn</where></item></d>",
     0,
     {"record 1: where: the text went into no field"}},
    {"wide characters",
     wide("<d>\n<item><code_id>A</code_id><x>1</x></item></d>"),
     0,
     {"d.xml:2:", "record 1: x: the text went into no field"}},
};

INSTANTIATE_TEST_SUITE_P(All, LossTest, testing::ValuesIn(LOSSES), [](const auto& instance) {
    std::string name = instance.param.name;
    for (char& c : name) c = c == ' ' ? '_' : c;
    return name;
});

TEST_F(CommandTest, RecordsOfDocumentsAreRejected) {
    write_file("i.cpy", COPYBOOK);
    const std::string bad = "<item><code_id>\xE2\x82\xAC</code_id><!-- c --></item>";
    write_file("d.xml", "<d>" + WHOLE + bad + WHOLE + bad + "</d>");
    std::vector<std::string> words = {"from-xml", "d.xml",      "d.dat",      "-l",
                                      "i.cpy",    "--encoding", "iso-8859-1", "--rejects",
                                      "bad.xml",  "--report",   "r.json"};
    const Outcome outcome = sxml(words);
    EXPECT_EQ(outcome.status, 3);
    EXPECT_NE(outcome.err.find("d.xml: 2 records rejected\n"), std::string::npos) << outcome.err;
    EXPECT_EQ(read_file("d.dat"), "AB  012Bonn  a b AB  012Bonn  a b ");
    const std::string why =
        ", field code_id: its character U+20AC is not in iso-8859-1 -->\n" + bad + "\n";
    EXPECT_EQ(read_file("bad.xml"),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<rejected>\n"
              "<!-- d.xml:2:1: record 2" +
                  why + "<!-- d.xml:3:1: record 4" + why + "</rejected>\n");
    const std::string report = read_file("r.json");
    for (const std::string part : {"\"status\": 3", "\"records\": 4", "\"field\": \"code_id\""}) {
        EXPECT_NE(report.find(part), std::string::npos) << part << report;
    }
    EXPECT_EQ(run({"python3", "-m", "json.tool", "r.json"}).status, 0);
    // What was rejected is a document that can be converted once its fault is mended.
    EXPECT_EQ(sxml({"from-xml", "bad.xml", "again.dat", "-l", "i.cpy"}).status, 0);
    EXPECT_EQ(read_file("again.dat").size(), 2 * 17U);
    words.insert(words.end(), {"--max-rejects", "1"});
    EXPECT_EQ(sxml(words).status, 1);
    // No option names a file that is read.
    words = {"from-xml", "d.xml", "d.dat", "-l", "i.cpy", "--rejects", "d.xml"};
    EXPECT_EQ(sxml(words).status, 2);
    words[6] = "bad.xml";
    words.insert(words.end(), {"--report", "i.cpy"});
    EXPECT_EQ(sxml(words).status, 2);
    EXPECT_EQ(read_file("i.cpy"), COPYBOOK);
}

TEST_F(CommandTest, ReportsOfFailedRunsReplaceThoseOfEarlierRuns) {
    write_file("i.cpy", COPYBOOK);
    write_file("d.xml", "<d>" + WHOLE + "</d>");
    write_file("bad.xml", "<!DOCTYPE d SYSTEM 'd.dtd'><d>" + WHOLE + "&out;");
    write_file("copied.cpy", "           05  F PIC Q.\n");
    write_file("bad.cpy", "       01  R.\n           COPY \"copied.cpy\".\n");
    struct Row {
        std::vector<std::string> words;
        const char* reason;
    };
    const std::vector<Row> rows = {
        {{"from-xml", "none.xml", "o", "-l", "i.cpy"}, "none.xml"},
        {{"from-xml", "d.xml", "o", "-l", "none.cpy"}, "no usable record layout"},
        {{"to-xml", "none.dat", "o", "-l", "i.cpy"}, "none.dat"},
        {{"to-xml", "d.xml", "o", "-l", "bad.cpy"}, "no usable record layout"},
        {{"from-xml", "d.xml", "o", "-l", "i.cpy", "--record", "d/none"}, "d/none"},
        {{"from-xml", "bad.xml", "o", "-l", "i.cpy", "--attributes"}, "bad.xml"},
        {{"from-xml", "bad.xml", "o", "-l", "i.cpy", "--strict"}, "the entity out"}};
    for (Row row : rows) {
        row.words.insert(row.words.end(), {"--report", "r.json"});
        for (const bool is_first : {true, false}) {
            if (is_first) std::filesystem::remove("r.json");
            if (!is_first) write_file("r.json", "{\n  \"input\": \"d.xml\",\n  \"status\": 0\n}\n");
            EXPECT_EQ(sxml(row.words).status, 1);
            const std::string report = read_file("r.json");
            EXPECT_NE(report.find("\"status\": 1"), std::string::npos) << row.reason << report;
            EXPECT_NE(report.find(row.reason), std::string::npos) << report;
        }
    }
    // Whether it is read is not known when the run fails.
    const std::string copied = read_file("copied.cpy");
    const Outcome outcome =
        sxml({"to-xml", "d.xml", "o", "-l", "bad.cpy", "--report", "copied.cpy"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.err.find("copied.cpy: the report is not written"), std::string::npos);
    EXPECT_EQ(read_file("copied.cpy"), copied);
}

TEST_F(CommandTest, QuietRunsSayHowMuchThereWasToSay) {
    write_file("i.cpy", COPYBOOK);
    write_file("d.xml",
               "<!DOCTYPE d [<!ENTITY code SYSTEM 'code.txt'>]>\n"
               "<d><item><code_id>&code;</code_id><amount>12z</amount><x>1</x><tag>abc</tag></item>"
               "<item><where><city>&code;</city></where><tag>a</tag></item></d>");
    const Outcome outcome = sxml({"from-xml", "d.xml", "d.dat", "-l", "i.cpy", "--quiet"});
    EXPECT_EQ(outcome.status, 0);
    const std::string sum = "sxml: warning: d.xml: ";
    EXPECT_EQ(outcome.err,
              sum +
                  "2 warnings about the input or the layout as a whole; without --quiet they are "
                  "printed\n" +
                  sum + "1 text of numeric fields that the fields cannot hold as they stand\n" +
                  sum + "1 text cut to the length of the field\n" + sum +
                  "1 text or attribute list went into no field\n" + sum + "x: 1 not used\n" +
                  "sxml: note: d.xml: fields without an element in some records, which are blank "
                  "there: amount (1)\n");
}

TEST_F(CommandTest, RecordsOfFilesAreRejected) {
    write_file("i.cpy", COPYBOOK);
    const std::string good = "AB  012Bonn  a b ";
    const std::string bad = "\x01   012Bonn  a b ";
    const std::string doubtful = "CD  0x2Bonn  a b ";
    write_file("d.dat", good + bad + doubtful + good);
    const Outcome outcome =
        sxml({"to-xml", "d.dat", "d.xml", "-l", "i.cpy", "--rejects", "bad.dat", "--quiet"});
    EXPECT_EQ(outcome.status, 3) << outcome.err;
    EXPECT_EQ(outcome.err,
              "sxml: warning: d.dat: 1 numeric field held no valid number and came out repaired\n"
              "sxml: warning: d.dat: 1 record rejected\n");
    EXPECT_EQ(read_file("bad.dat"), bad);
    const Outcome strict =
        sxml({"to-xml", "d.dat", "s.xml", "-l", "i.cpy", "--rejects", "bad.dat", "--strict"});
    EXPECT_EQ(strict.status, 3) << strict.err;
    EXPECT_EQ(read_file("bad.dat"), bad + doubtful);
    sxml({"from-xml", "s.xml", "s.dat", "-l", "i.cpy"});
    EXPECT_EQ(read_file("s.dat"), good + good);
    EXPECT_EQ(sxml({"to-xml", "d.dat", "s.xml", "-l", "i.cpy", "--strict"}).status, 1);
}

TEST_F(CommandTest, WarningsAboutAWholeCopybookNameIt) {
    write_file("r.cpy", "       01  R.\n           05  F PIC X.\n");
    EXPECT_EQ(sxml({"to-xml", "/dev/null", "r.xml", "-l", "r.cpy", "--strict"}).err,
              "sxml: warning: r.cpy: an item is called r like the description; the document "
              "element becomes r_file\n");
}

TEST_F(CommandTest, RecordsOfNoLayoutAreNamedOnTheWayOut) {
    write_file("k.cpy",
               "      *> sxml: when KIND OF A = \"A\"\n"
               "       01  A.\n"
               "           05  KIND PIC X(2).\n"
               "           05  WORD PIC X(3).\n"
               "      *> sxml: when KIND OF B = \"BB\"\n"
               "       01  B.\n"
               "           05  KIND PIC X(2).\n"
               "           05  SUM-OF PIC 9(3).\n");
    write_file("k.dat", "A abcBB123XXxyz" + std::string("A\0abc", 5));
    const Outcome outcome = sxml({"to-xml", "k.dat", "-", "-l", "k.cpy"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.out.find("<word>abc</word>"), std::string::npos);
    for (const std::string said :
         {"k.dat: record 3, byte offset 10: none of the record layouts' conditions holds\n",
          "k.dat: record 4, byte offset 15: none of the record layouts' conditions holds; its NUL "
          "bytes keep a condition from holding",
          "k.dat: 2 records of no layout; "}) {
        EXPECT_NE(outcome.err.find(said), std::string::npos) << said << outcome.err;
    }
    EXPECT_EQ(sxml({"to-xml", "k.dat", "-", "-l", "k.cpy", "--strict"}).status, 1);
}

// A document with one change, made by chance.
std::string changed(std::string document, std::mt19937& random) {
    std::vector<std::string> lines;
    while (!document.empty()) {
        const std::size_t end = document.find('\n') + 1;
        lines.push_back(document.substr(0, end));
        document.erase(0, end);
    }
    const auto pick = [&random](std::size_t count) { return random() % count; };
    std::vector<std::size_t> fields;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const bool is_field = lines[i].find("</") != std::string::npos && lines[i][1] == ' ';
        if (is_field && lines[i].find('>') + 1 < lines[i].find("</")) fields.push_back(i);
    }
    const std::size_t at = fields[pick(fields.size())];
    std::string& line = lines[at];
    const std::size_t open = line.find('<');
    const std::size_t text = line.find('>');
    const std::size_t close = line.find("</");
    switch (pick(6)) {
        case 0:  // renamed
            line.insert(close + 2, "x").insert(open + 1, "x");
            break;
        case 1: {  // moved; rows of a table in another order are other data, not a loss
            if (line.find("<tag>") != std::string::npos) break;
            const std::string moved = line;
            line.clear();
            lines[fields[pick(fields.size())]].insert(0, moved);
            break;
        }
        case 2:  // doubled
            line += line;
            break;
        case 3:  // dropped
            line.clear();
            break;
        case 4:  // longer
            line.insert(close, "0123456789");
            break;
        default:
            line.insert(text, " kind=\"1\"");
    }
    std::string result;
    for (const std::string& each : lines) result += each;
    return result;
}

TEST_F(CommandTest, NoChangeOfADocumentIsSilent) {
    write_file("i.cpy", COPYBOOK);
    write_file("d.dat", "AB  012Bonn  a b CD  345Trier c d EF  678Ulm   e f ");
    ASSERT_EQ(sxml({"to-xml", "d.dat", "d.xml", "-l", "i.cpy"}).status, 0);
    const std::string document = read_file("d.xml");
    for (unsigned seed = 1; seed <= 60; ++seed) {
        std::mt19937 random(seed);
        write_file("c.xml", changed(document, random));
        const Outcome outcome = sxml({"from-xml", "c.xml", "c.dat", "-l", "i.cpy"});
        const bool is_same = outcome.status == 0 && read_file("c.dat") == read_file("d.dat");
        EXPECT_TRUE(is_same || !outcome.err.empty()) << seed << "\n" << read_file("c.xml");
    }
}

// What a table's counter does not count, and numbers that a text or a field cannot hold.
struct CountedCase {
    const char* name;
    std::string layout;
    std::string format;
    std::string document;  // empty: the records are converted
    std::string records;
    int status;
    int strict_status;
    std::vector<std::string> said;
};

TEST_F(CommandTest, UncountedEntriesAndInexactNumbersAreTold) {
    const std::string table =
        "       01  REC.\n           05  N PIC 9.\n"
        "           05  T PIC X(3) OCCURS 0 TO 4 DEPENDING ON N.\n";
    const std::string floats =
        "       01  REC.\n           05  F COMP-1.\n           05  D COMP-2.\n";
    const std::string uncounted = "there is data for an entry that the table's counter does not";
    const std::string two = "<d><rec><n>1</n><t>abc</t><t>def</t></rec></d>";
    const CountedCase cases[] = {
        {"entries cut", table, "rdw", two, "", 1, 1, {"record 1, field t(2): " + uncounted}},
        {"entries kept",
         table,
         "fixed",
         two,
         "",
         0,
         1,
         {"1:4: record 1, field t(2): " + uncounted}},
        {"no counter", table, "gnucobol", "<d><rec><t>abc</t></rec></d>", "", 1, 1, {"field t(1)"}},
        {"blank entries", table, "rdw", "<d><rec><n>1</n><t>a</t><t/></rec></d>", "", 0, 0, {}},
        {"counter", table, "rdw", "<d><rec><n>9</n></rec></d>", "", 1, 1, {"from 0 to 4"}},
        {"bytes",
         table,
         "rdw",
         "",
         std::string("\0\013\0\0001abcdef", 11),
         0,
         1,
         {"record 1, field t(2), byte offset 8 (4 in the record): " + uncounted, "X'646566'"}},
        {"half an entry",
         table,
         "rdw",
         "",
         std::string("\0\012\0\0001abcde", 10),
         0,
         1,
         {"X'6465'"}},
        {"blank bytes", table, "rdw", "", std::string("\0\013\0\0001abc  \0", 11), 0, 0, {}},
        {"counter of records",
         table,
         "rdw",
         "",
         std::string("\0\010\0\0009abc", 8),
         0,
         1,
         {"record 1, field n, byte offset 4", "from 0 to 4"}},
        {"a large number",
         floats,
         "fixed",
         "",
         std::string(4, '\0') + "\x87\x13\xC3\x43\xA5\x5A\x7F\x69",
         0,
         1,
         {"record 1, field d, byte offset 4: a number too large or too small"}},
        {"a small number",
         floats,
         "fixed",
         "",
         std::string(4, '\0') + "\1" + std::string(7, '\0'),
         0,
         1,
         {"X'0100000000000000'"}},
        {"many digits",
         floats,
         "fixed",
         "<d><rec><f>123456789</f></rec></d>",
         "",
         0,
         1,
         {"field f: more decimals or low-order digits", "'123456789'"}},
        {"no float so small",
         floats,
         "fixed",
         "<d><rec><f>1e-50</f></rec></d>",
         "",
         0,
         1,
         {"field f"}},
        {"no double so small",
         floats,
         "fixed",
         "<d><rec><d>1e-400</d></rec></d>",
         "",
         0,
         1,
         {"field d"}},
        {"digits that floats give back",
         floats,
         "fixed",
         "<d><rec><f>123456792</f><d>0.30000000000000004</d></rec></d>",
         "",
         0,
         0,
         {}},
    };
    for (const CountedCase& one : cases) {
        SCOPED_TRACE(one.name);
        write_file("c.cpy", one.layout);
        write_file("c.in", one.document.empty() ? one.records : one.document);
        const std::string command = one.document.empty() ? "to-xml" : "from-xml";
        const auto converted = [&](const std::vector<std::string>& more) {
            std::vector<std::string> words = {command,           "c.in",    "c.out", "-l", "c.cpy",
                                              "--record-format", one.format};
            words.insert(words.end(), more.begin(), more.end());
            return sxml(words);
        };
        const Outcome outcome = converted({});
        EXPECT_EQ(outcome.status, one.status) << outcome.err;
        for (const std::string& text : one.said) {
            EXPECT_NE(outcome.err.find(text), std::string::npos) << text << "\nin: " << outcome.err;
        }
        EXPECT_EQ(converted({"--strict"}).status, one.strict_status);
        const Outcome check = sxml({"check", "c.in", "-l", "c.cpy", "--record-format", one.format});
        EXPECT_EQ(check.status, one.strict_status) << check.out << check.err;
    }
}

}  // namespace
