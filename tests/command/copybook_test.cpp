// Copybooks made from sample documents: cobc compiles them, and with them a document goes into
// records and comes back.

#include <algorithm>
#include <array>

#include "tests/command/command_run.h"
#include "tests/command/contents.h"

namespace {

struct Sample {
    const char* name;
    std::string document;
    std::vector<std::string> options;   // of copybook
    std::vector<std::string> settings;  // of from-xml and to-xml
    std::vector<std::string> parts;     // of the copybook
};

void PrintTo(const Sample& one, std::ostream* out) {
    *out << one.name;
}

class CopybookTest : public CommandTest, public testing::WithParamInterface<Sample> {};

const std::string PROGRAM =
    "       IDENTIFICATION DIVISION.\n       PROGRAM-ID. READER.\n"
    "       ENVIRONMENT DIVISION.\n       INPUT-OUTPUT SECTION.\n       FILE-CONTROL.\n"
    "           SELECT DATA-FILE ASSIGN TO \"sample.dat\".\n"
    "       DATA DIVISION.\n       FILE SECTION.\n       FD  DATA-FILE.\n"
    "       COPY \"sample.cpy\".\n"
    "       PROCEDURE DIVISION.\n           OPEN INPUT DATA-FILE.\n           STOP RUN.\n";

TEST_P(CopybookTest, ReadsTheSampleAndWritesItAgain) {
    const Sample& sample = GetParam();
    write_file("sample.xml", sample.document);
    write_file("reader.cbl", PROGRAM);
    std::vector<std::string> words = {"copybook", "sample.xml", "-o", "sample.cpy"};
    words.insert(words.end(), sample.options.begin(), sample.options.end());
    const Outcome made = sxml(words);
    ASSERT_EQ(made.status, 0) << made.err;
    EXPECT_EQ(made.err.find("warning"), std::string::npos) << made.err;
    const std::string copybook = read_file("sample.cpy");
    for (const std::string& part : sample.parts) {
        EXPECT_NE(copybook.find(part), std::string::npos) << part << "\nin: " << copybook;
    }
    const Outcome compiled = run({"cobc", "-fsyntax-only", "reader.cbl"});
    EXPECT_EQ(compiled.status, 0) << compiled.err << copybook;

    words = {"from-xml", "sample.xml", "sample.dat", "--layout", "sample.cpy", "--strict"};
    words.insert(words.end(), sample.settings.begin(), sample.settings.end());
    const Outcome read = sxml(words);
    ASSERT_EQ(read.status, 0) << read.err << copybook;
    words = {"to-xml", "sample.dat", "again.xml", "--layout", "sample.cpy", "--strict"};
    words.insert(words.end(), sample.settings.begin(), sample.settings.end());
    const Outcome written = sxml(words);
    ASSERT_EQ(written.status, 0) << written.err << copybook;
    EXPECT_EQ(contents_of(read_file("again.xml")), contents_of(sample.document)) << copybook;
}

const std::string INVOICES =
    "<?xml version='1.0'?><invoices>\n"
    "<invoice><number>1001</number><date>2026-11-02</date><customer><name>M\xC3\xBCller &amp; "
    "Co</name><zip>01067</zip></customer>\n"
    "<line><article>bolt</article><quantity>12</quantity><price>0.25</price></line>"
    "<line><article>nut</article><quantity>100</quantity><price>1.10</price></line>"
    "<total>-113.00</total></invoice>\n"
    "<invoice><number>1002</number><date>2026-11-03</date><customer><name>Smith</name>"
    "<zip>90210</zip></customer><line><article>washer</article><quantity>1</quantity>"
    "<price>3.99</price></line><total>3.99</total><note>urgent</note></invoice></invoices>";

const std::string KINDS =
    "<batch><header><sender>ACME</sender><sent>2026-11-23T10:00:00</sent></header>"
    "<order><number>7</number><address><city>Bonn</city></address></order>"
    "<refund><number>8</number><reason>late</reason><address><city>Ulm</city>"
    "<street>Am Ring 5</street></address></refund>"
    "<order><number>9</number><address><city>Kiel</city></address></order></batch>";

const std::string CAPITALS =
    "<Feed><lineItem-List><ItemId>A7</ItemId><SORT>up</SORT><seller><Name>A</Name></seller>"
    "<buyer><Name>B</Name></buyer></lineItem-List></Feed>";

// Tables in tables, each with one entry somewhere.
const std::string LISTS =
    "<orders><order><line><tax><rate>1</rate></tax><tax><rate>2</rate></tax></line>"
    "<line><tax><rate>3</rate></tax></line></order>"
    "<order><line><tax><rate>4</rate></tax><tax><rate>5</rate></tax></line></order>"
    "<order><line><tax><rate>6</rate></tax></line></order></orders>";

// Names of several fields and groups, of which a record may lack the first.
const std::string PLACES =
    "<q><a><n>1</n><buyer><n>2</n></buyer><seller>\n <n>3</n>\n <seller>4</seller>\n</seller></a>"
    "<a><seller><n>5</n></seller></a><a><buyer><n>6</n></buyer></a><a><n>7</n><seller/></a></q>";

// Names that COBOL keeps for itself, or cannot hold, or that become alike.
std::string awkward_names() {
    std::string record = "<r>";
    int number = 0;
    for (const std::string name :
         {"move", "perform", "a-b", "a_b", "a.b", "aB", "_7", "n7", "x", "value", "picture",
          "record-contains-more-than-thirty-letters", "record-contains-more-than-thirty-letterz"}) {
        record += "<" + name + ">t" + std::to_string(++number) + "</" + name + ">";
    }
    return "<all>" + record + "</r></all>";
}

std::string flat_export(int rows) {
    std::string document = "<export>";
    for (int row = 1; row <= rows; ++row) {
        const std::string number = std::to_string(row);
        document += "<row><id>" + number + "</id><name>name " + number + "</name><amount>" +
                    std::to_string(row % 977 + 1) + ".5</amount></row>\n";
    }
    return document + "</export>";
}

const std::vector<std::string> EXACT = {"--set", "4GL_COLUMN_CASE=2"};

INSTANTIATE_TEST_SUITE_P(
    Samples, CopybookTest,
    testing::Values(
        Sample{"invoices",
               INVOICES,
               {},
               {},
               {"01  INVOICE.", "OCCURS 3.", "PIC S9(4)V9(2).", "*> sxml: name date",
                "longest 11 characters, 12 bytes", "ZIP PIC X(6)", "in 1 of 2"}},
        Sample{"packed",
               INVOICES,
               {"--packed", "--grow", "0"},
               {},
               {"PIC S9(3)V9(2) COMP-3.", "OCCURS 2."}},
        Sample{"kinds",
               KINDS,
               {},
               {"--encoding", "utf-8"},
               {"01  HEADER.", "01  ORDER-RECORD.", "*> sxml: when REFUND-KIND ="}},
        Sample{"kinds in EBCDIC", KINDS, {}, {"--encoding", "cp037"}, {}},
        Sample{"capitals", CAPITALS, {}, EXACT, {"*> sxml: name lineItem-List", "ITEM-ID"}},
        Sample{"case",
               "<all><r><Id>1</Id><p><id>2</id></p></r><s><a-b>3</a-b><a_b>4</a_b></s></all>",
               {},
               EXACT,
               {}},
        Sample{"names", awkward_names(), {}, EXACT, {"*> sxml: name move"}},
        Sample{"lists in lists", LISTS, {}, {}, {"TAX OCCURS 3."}},
        Sample{"names in several places", PLACES, {}, {}, {}},
        Sample{"export", flat_export(10000), {}, {}, {"10000 records", "ID PIC 9(6)"}}),
    [](const testing::TestParamInfo<Sample>& sample) {
        std::string name = sample.param.name;
        std::replace(name.begin(), name.end(), ' ', '_');
        return name;
    });

struct Loss {
    const char* name;
    std::string document;
    std::vector<std::string> options;
    int status;
    std::string said;
};

// What cannot be read is said with its place; what is hostile ends with an error.
TEST_F(CommandTest, SaysWhatACopybookCannotRead) {
    std::string deep;
    for (int i = 0; i < 100; ++i) deep += "<d>";
    std::string bomb = "<!DOCTYPE a [<!ENTITY e0 'ha'>";
    for (int i = 1; i < 40; ++i) {
        const std::string inner = "&e" + std::to_string(i - 1) + ";";
        bomb += "<!ENTITY e" + std::to_string(i) + " '" + inner + inner + "'>";
    }
    std::string many = "<a><r>";
    for (int i = 0; i < 100'001; ++i) many += "<n" + std::to_string(i) + "/>";
    std::string nested;
    for (int i = 0; i < 16; ++i) {
        const std::string name = "t" + std::to_string(i);
        nested = "<" + name + ">" + nested + (nested.empty() ? "1" : "") + "</" + name + "><" +
                 name + "/>";
    }
    std::string wide = "<a><r>";
    for (int i = 0; i < 40'000; ++i) wide += "<t>1</t>";
    std::string kinds = "<a>";
    for (int i = 0; i < 257; ++i)
        kinds += "<k" + std::to_string(i) + "><v>1</v></k" + std::to_string(i) + ">";
    const std::vector<Loss> losses = {
        {"kinds",
         kinds + "</a>",
         {},
         1,
         "257 kinds of elements that can be records; there may be 256"},
        {"attributes",
         "<a><r no='1'><b>x</b></r>\n<r no='2'><b>y</b></r></a>",
         {},
         0,
         "s.xml:1:4: r: attributes cannot be read"},
        {"mixed", "<a><r>\n<b>x<c>y</c></b></r></a>", {}, 0, "s.xml:2:13: r/b: the text beside"},
        {"text as record", "<a><r>x</r><s><t>y</t></s></a>", {}, 0, "r: cannot be read"},
        {"text beside records", "<a>x<r><b>1</b></r></a>", {}, 0, "s.xml:1:20: a: the text beside"},
        {"empty records", "<a><r><b>1</b></r><e/></a>", {}, 0, "warning: e: is always empty"},
        {"name of a record",
         "<a><\xC3\xBC><b>x</b></\xC3\xBC></a>",
         {},
         1,
         "can be fields (\xC3\xBC: cannot be read: copybooks cannot give this name"},
        {"letters beyond ASCII",
         "<a><r><b>x</b><\xC3\xBC>y</\xC3\xBC></r></a>",
         {},
         0,
         "r/\xC3\xBC: cannot be read"},
        {"names beside each other",
         "<a><r><b>x</b><B>y</B></r></a>",
         {},
         0,
         "r/B: cannot be read: a name beside it differs in case only"},
        {"names of records",
         "<a><r><b>x</b></r><R><b>y</b></R></a>",
         {},
         0,
         "R: cannot be read: a name beside it differs in case only"},
        {"no records", "<a/>", {}, 1, "no child of the document element"},
        {"unclosed", "<a><r><b>x</b></r>", {}, 1, "s.xml:1:19: no element found"},
        {"deep", "<a>" + deep, {}, 1, "s.xml:"},
        {"deep and closed", "", {}, 1, "nest deeper than 64"},
        {"entities", bomb + "]><a>&e39;</a>", {}, 1, "s.xml:"},
        {"many names", many + "</r></a>", {}, 1, "more than 100000 different"},
        {"long table", wide + "</r></a>", {}, 1, "a table more than 32767 entries"},
        {"nested tables", "<a><r>" + nested + "</r></a>", {}, 1, "--record takes others"},
        {"deep table", "<a><r><n>1</n>" + nested + "</r></a>", {}, 0, "with --record"},
        {"records further down",
         "<a><h><b>1</b></h><p><o><n>1</n></o><o><n>2</n></o></p></a>",
         {},
         0,
         "if the records are further down, --record a/p/o takes those"},
        {"growth", "<a><r><b>x</b></r></a>", {"--grow", "1%2"}, 2, "--grow: 1%2 is not"},
        {"one file", "<a><r><b>x</b></r></a>", {"-o", "s.xml"}, 2, "they are one file"},
    };
    for (const Loss& loss : losses) {
        SCOPED_TRACE(loss.name);
        std::string document = loss.document;
        if (document.empty()) {
            for (int i = 0; i < 70; ++i) document = "<d>" + document + "</d>";
        }
        write_file("s.xml", document);
        std::vector<std::string> words = {"copybook", "s.xml"};
        words.insert(words.end(), loss.options.begin(), loss.options.end());
        const Outcome outcome = sxml(words);
        EXPECT_EQ(outcome.status, loss.status) << outcome.err;
        EXPECT_NE(outcome.err.find(loss.said), std::string::npos) << outcome.err;
        EXPECT_EQ(read_file("s.xml"), document);
    }
    write_file("other.xml", "<other/>");
    write_file("s.xml", "<a><r><b>x</b></r></a>");
    const Outcome outcome = sxml({"copybook", "s.xml", "other.xml"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.err.find("other.xml:1:1: the document element is other"), std::string::npos)
        << outcome.err;
}

// Zero is neither empty nor missing; with --exact every text comes back as it was.
TEST_F(CommandTest, KeepsNumbersThatAreEmptyOrZeroApart) {
    const std::string document =
        "<all><r><n>0</n><d>5</d><e>1</e><m>0</m><o>4</o><t><q>3</q></t><t><q>40</q></t></r>"
        "<r><n>7</n><d>5.5</d><e/></r></all>";
    write_file("s.xml", document);
    const Outcome made = sxml({"copybook", "s.xml", "--grow=0"});
    EXPECT_EQ(made.err, "");
    for (const std::string part : {"N PIC 9(1).", "D PIC 9(1)V9(1).", "E PIC X(1).", "M PIC X(1).",
                                   "O PIC 9(1).", "Q PIC 9(2)."}) {
        EXPECT_NE(made.out.find(part), std::string::npos) << part << "\nin: " << made.out;
    }
    ASSERT_EQ(sxml({"copybook", "s.xml", "--exact", "-o", "s.cpy"}).status, 0);
    EXPECT_NE(read_file("s.cpy").find("Q PIC 9(3)."), std::string::npos) << read_file("s.cpy");
    ASSERT_EQ(sxml({"from-xml", "s.xml", "s.dat", "-l", "s.cpy", "--strict"}).status, 0);
    ASSERT_EQ(
        sxml({"to-xml", "s.dat", "t.xml", "-l", "s.cpy", "--set", "SXML_IGNORE_EMPTY_DATA=yes"})
            .status,
        0);
    EXPECT_EQ(contents_of(read_file("t.xml"), Zeros::counted),
              contents_of(document, Zeros::counted))
        << read_file("s.cpy");
}

// Several samples make one copybook.
TEST_F(CommandTest, MakesACopybookOfSeveralSamples) {
    write_file("one.xml", "<a><r><b>x</b></r></a>");
    write_file("two.xml", "<a><r><b>longer</b><c>5</c></r></a>");
    write_file("other.xml", "<z><r/></z>");
    const Outcome both = sxml({"copybook", "one.xml", "two.xml", "--grow=0%"});
    EXPECT_EQ(both.status, 0) << both.err;
    EXPECT_NE(both.out.find("B PIC X(6)."), std::string::npos) << both.out;
    EXPECT_NE(both.out.find("in 1 of 2"), std::string::npos) << both.out;
    EXPECT_EQ(sxml({"copybook", "one.xml", "other.xml"}).status, 1);
}

// A prefix is part of a name as it is written; no document could declare it.
TEST_F(CommandTest, ReadsNamesWithPrefixes) {
    write_file("s.xml", "<f xmlns:a='urn:a'><a:item><a:price>1.25</a:price></a:item></f>");
    ASSERT_EQ(sxml({"copybook", "s.xml", "-o", "s.cpy"}).status, 0);
    EXPECT_NE(read_file("s.cpy").find("*> sxml: name a:price"), std::string::npos);
    const Outcome read = sxml({"from-xml", "s.xml", "s.dat", "--layout", "s.cpy", "--strict"});
    EXPECT_EQ(read.status, 0) << read.err;
    EXPECT_EQ(read_file("s.dat"), "0125");
    const Outcome written = sxml({"to-xml", "s.dat", "t.xml", "--layout", "s.cpy"});
    EXPECT_EQ(written.status, 1);
    EXPECT_NE(written.err.find("a:item cannot be written"), std::string::npos) << written.err;
    EXPECT_EQ(files(), (std::vector<std::string>{"s.cpy", "s.dat", "s.xml"}));
}

// Records further down, with places as in the document, in every encoding that Expat knows.
TEST_F(CommandTest, TakesRecordsAtAPath) {
    const std::string document =
        "<?xml version='1.0'?>\n<orders>\r\n <head at='1'>\xC3\xA9\xC4\x8A text</head>\n <page "
        "n='1'>\n"
        "  <order><id>7</id></order><other><id>1</id></other>\n  <order><id>8</id>\n"
        "   <more>x</more></order></page><order><id>2</id></order>\n"
        " <page><order/><order><id>9</id></order></page></orders>\n";
    write_file("utf-8.xml", document);
    ASSERT_EQ(run({"iconv", "-f", "utf-8", "-t", "utf-16", "utf-8.xml"}, "", "utf-16.xml").status,
              0);
    ASSERT_EQ(run({"iconv", "-f", "utf-8", "-t", "utf-16be", "utf-8.xml"}, "", "big.xml").status,
              0);
    write_file("marked.xml", "\xEF\xBB\xBF" + document);
    write_file("n.cpy", "       01  R.\n      *> sxml: name id\n           05  ID-NO PIC 9.\n");
    for (const std::string file : {"utf-8.xml", "marked.xml", "utf-16.xml", "big.xml"}) {
        SCOPED_TRACE(file);
        const Outcome read =
            sxml({"from-xml", file, "-", "--layout", "n.cpy", "--record", "orders/page/order"});
        EXPECT_EQ(read.status, 0) << read.err;
        EXPECT_EQ(read.out, "7809");
        EXPECT_NE(read.err.find(file + ":7:4: record 2: more"), std::string::npos) << read.err;
        const Outcome made = sxml({"copybook", file, "--record", "orders/page/order", "--grow=0%"});
        EXPECT_EQ(made.status, 0) << made.err;
        EXPECT_NE(made.out.find("4 records"), std::string::npos) << made.out;
        EXPECT_EQ(made.out.find("OTHER"), std::string::npos) << made.out;
    }
    write_file("s.xsd", "<schema xmlns='http://www.w3.org/2001/XMLSchema'/>");
    write_file("broken.xml", "<orders>\n<page></pages></orders>");
    write_file("entity.xml", "<!DOCTYPE a [<!ENTITY e '<r><b>1</b></r>'>]><a><p>&e;</p></a>");
    const std::vector<std::array<const char*, 4>> refused = {
        {"utf-8.xml", "orders/nothing", "1", "utf-8.xml: there is no element at orders/nothing"},
        {"utf-8.xml", "orders", "2", "is not a path to records"},
        {"utf-8.xml", "orders//order", "2", "is not a path to records"},
        {"s.xsd", "orders//order", "2", "is not a path to records"},
        {"broken.xml", "orders/page", "1", "broken.xml:2:9: mismatched tag"},
        {"entity.xml", "a/p/r", "1", "the records come from an entity"},
    };
    for (const auto& [file, path, status, said] : refused) {
        const Outcome outcome = sxml({"copybook", file, "--record", path});
        EXPECT_EQ(std::to_string(outcome.status), status) << outcome.err;
        EXPECT_NE(outcome.err.find(said), std::string::npos) << outcome.err;
    }
}

}  // namespace
