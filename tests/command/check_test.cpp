// sxml check: what it says of files, and that it agrees with the conversions.

#include "tests/command/command_run.h"

namespace {

// 15 bytes.
const std::string COPYBOOK =
    "       01  ITEM.\n"
    "           05  CODE-ID PIC X(4).\n"
    "           05  WHERE.\n"
    "               10  CITY PIC X(5).\n"
    "           05  COUNT-OF PIC 9(3).\n"
    "           05  AMOUNT PIC S9(5) COMP-3.\n";

const std::string PACKED("\x12\x34\x5C", 3);

std::string item(const std::string& code, const std::string& count) {
    return code + "Bonn " + count + PACKED;
}

const std::string THREE = item("AB  ", "012") + item("CD  ", "345") + item("EF  ", "000");

struct CheckCase {
    const char* name;
    std::string data;
    std::vector<std::string> options;
    int status;
    std::vector<std::string> said;
};

void PrintTo(const CheckCase& one, std::ostream* out) {
    *out << one.name;
}

std::string in_ebcdic(const std::string& text) {
    return run({"iconv", "-f", "ascii", "-t", "cp037"}, text).out;
}

std::string without_packed(const std::string& ending = "") {
    return "AB  Bonn 012" + ending + "CD  Bonn 345" + ending + "EF  Bonn 678" + ending;
}

class CheckTest : public CommandTest, public testing::WithParamInterface<CheckCase> {
  protected:
    void SetUp() override {
        CommandTest::SetUp();
        write_file("i.cpy", COPYBOOK);
        write_file("t.cpy", COPYBOOK.substr(0, COPYBOOK.find("           05  AMOUNT")));
        write_file("long.cpy",
                   "       01  R.\n           05  T PIC X(9).\n"
                   "           05  N PIC 9(3).\n           05  REST PIC X(2).\n");
        write_file("h.cpy",
                   "      *> sxml: when KIND = \"H\"\n"
                   "       01  HDR.\n"
                   "           05  KIND PIC X.\n"
                   "           05  FILLER PIC X.\n"
                   "           05  MARK PIC X.\n"
                   "      *> sxml: when KIND2 = \"T\"\n"
                   "       01  TRL.\n"
                   "           05  KIND2 PIC X.\n"
                   "           05  SUM-OF PIC 9(2).\n");
        write_file("b.cpy", "       01  R.\n           05  B PIC 9(4) COMP.\n");
        write_file("ebcdic.cpy", in_ebcdic(COPYBOOK));
    }
};

TEST_P(CheckTest, TellsWhatAConversionWouldLose) {
    const CheckCase& one = GetParam();
    write_file("f", one.data);
    const std::vector<std::string> before = files();
    std::vector<std::string> words = {"check", "f"};
    words.insert(words.end(), one.options.begin(), one.options.end());
    const Outcome outcome = sxml(words);
    EXPECT_EQ(outcome.status, one.status) << outcome.err;
    const std::string said = outcome.out + outcome.err;
    for (const std::string& text : one.said) {
        EXPECT_NE(said.find(text), std::string::npos) << "missing: " << text << "\nin: " << said;
    }
    EXPECT_EQ(files(), before);
}

const std::vector<std::string> ITEM = {"-l", "i.cpy"};
const std::vector<std::string> TEXTS = {"-l", "t.cpy"};
const std::vector<std::string> BOTH = {"-l", "h.cpy"};

const CheckCase CASES[] = {
    {"records_without_loss",
     THREE,
     ITEM,
     0,
     {"f: 3 records of a record file\n\nField       Values  Blank  Zero  Invalid  Cut  Longest  "
      "Smallest  Largest\ncode_id          3                                   2  AB        EF\n",
      "count_of         3            1                         0         345\n",
      "\nA conversion would lose nothing.\n"}},
    {"bad_numbers",
     item("AB  ", "   ") + item("\x01\x02  ", "3x5"),
     ITEM,
     1,
     {"count_of         2      1              2",
      "  f: record 1, field count_of, byte offset 9: not a valid number: X'202020'\n"
      "    bytes 20 20 20, text ''\n",
      "1 record rejected:\n  f: record 2, field code_id, byte offset 15",
      "    bytes 01 02 20 20, text '..'\n", "A conversion would not take over everything.\n"}},
    {"binary_numbers_of_the_bytes_of_blanks",
     std::string("  \0\0", 4),
     {"-l", "b.cpy"},
     0,
     {"b           2            1                         0         8224\n"}},
    {"records_by_layout",
     "Hab" + std::string("T12") + "x  T7xH  ",
     BOTH,
     1,
     {"hdr           2\ntrl           2\n(none)        1\n", "1 record of no layout",
      "f: record 3, byte offset 6: none of the record layouts' conditions holds",
      "1 byte of 1 record in no field and not blank, the first in record 1 at byte offset 1; "
      "--filler"}},
    {"white_space_around_texts",
     item("  AB", "012") + item("A\t  ", "345") + item("    ", "000"),
     ITEM,
     1,
     {"2 texts with white space in front, or tabs or line ends after, which a document does not "
      "keep, the first in record 1, field code_id, at byte offset 0\n"}},
    {"decimals_that_are_cut",
     "<d><item><count_of>1.5</count_of></item></d>",
     ITEM,
     1,
     {"field count_of: more decimals", "count_of         1                          1  "}},
    {"cut_short",
     THREE + "AB",
     ITEM,
     1,
     {"The run fails: f: record 4, byte offset 45: the record"}},
    {"nothing", "", ITEM, 0, {"f: 0 records of a record file"}},
    {"a_document",
     "<?xml version=\"1.0\"?>\n<d>\n<item><code_id>ABCDE</code_id><count_of>1x</count_of>\n"
     "<amount>7</amount></item><item><code_id>A</code_id><count_off>1</count_off></item></d>\n",
     ITEM,
     1,
     {"f: 2 records of a document\n", "f:3:1: record 1, field code_id: a text of 5 bytes was cut",
      "    bytes 41 42 43 44 45, text 'ABCDE'\n",
      "f:3:1: record 1, field count_of: not a number that fits the field: '1x'",
      "f:4:52: record 2: count_off: the text went into no field", "count_off: 1 not used",
      "code_id          2                          1        4  A         ABCD\n",
      "count_of         2      1              1\n", "Note: fields without an element"}},
    {"a_document_without_loss",
     "<d><item><where><city>Bonn</city></where></item></d>",
     ITEM,
     0,
     {"where/city       1                                   4  Bonn      Bonn\n"}},
    {"a_document_that_ends_early", "<d><item/>", ITEM, 1, {"The run fails: f:1:"}},
    {"records_at_a_path",
     "<d><page><item><code_id>A</code_id></item></page><page><item><code_id>B</code_id></item>"
     "</page></d>",
     {"-l", "i.cpy", "--record", "d/page/item", "--buffer", "zeros"},
     0,
     {"f: 2 records of a document", "code_id          2      "}},
    {"a_document_for_lines_in_ebcdic",
     "<d><item/></d>",
     {"-l", "t.cpy", "--line", "--encoding", "cp037"},
     2,
     {"sxml: --line: records in cp037 are of fixed length"}},
    {"a_path_in_a_record_file",
     THREE,
     {"-l", "i.cpy", "--record", "d/item"},
     2,
     {"sxml: f is a record file (--as xml says otherwise); --record,"}},
    {"as_records", "<d> Bonn 012" + PACKED, {"-l", "i.cpy", "--as", "records"}, 0, {"<d>"}},
    {"as_xml", THREE, {"-l", "i.cpy", "--as", "xml"}, 1, {"f:1:1: "}},
    {"longer_records",
     item("AB  ", "012") + "++" + item("CD  ", "345") + "++" + item("EF  ", "000") + "++",
     ITEM,
     1,
     {"Likely reason: the records seem to be 17 bytes long, the layout has 15; add"}},
    {"shorter_records",
     without_packed(),
     {"-l", "long.cpy"},
     1,
     {"12 bytes long, the layout has 14"}},
    {"headers_with_the_length",
     std::string("\0\x13\0\0", 4) + item("AB  ", "012") + std::string("\0\x13\0\0", 4) +
         item("CD  ", "345") + std::string("\0\x13\0\0", 4) + item("EF  ", "012"),
     ITEM,
     1,
     {"The run fails: f: record 1, byte offset 0: the file has headers with lengths in it"}},
    {"headers_of_longer_records",
     std::string("\0\x15\0\0", 4) + item("AB  ", "012") + "++" + std::string("\0\x14\0\0", 4) +
         item("CD  ", "345") + "+",
     ITEM,
     1,
     {"Likely reason: each record seems to be preceded by its length; try --record-format rdw,"}},
    {"other_headers_of_longer_records",
     std::string("\0\x11", 2) + item("AB  ", "012") + "++" + std::string("\0\x10", 2) +
         item("CD  ", "345") + "+",
     ITEM,
     1,
     {"preceded by its length; try --record-format gnucobol:3,"}},
    {"line_ends_in_binary_records",
     item("AB  ", "012") + "\n" + item("CD  ", "345") + "\n" + item("EF  ", "000") + "\n",
     ITEM,
     1,
     {"Likely reason: each record seems to be followed by a line end; "}},
    {"lines", without_packed("\r\n"), TEXTS, 1, {"followed by a line end; try --line"}},
    {"short_lines",
     "AB  Bonn 012\nCD  Bonn 345\nEF  Bonn 678\n\n"
     "GH  Ulm  901\n",
     TEXTS,
     1,
     {"line end"}},
    {"no_lines",
     without_packed(),
     {"-l", "t.cpy", "--line"},
     1,
     {"the records seem to be of fixed length; try --record-format fixed"}},
    {"ebcdic_read_as_ascii",
     in_ebcdic(without_packed()),
     TEXTS,
     1,
     {"seem to be in another character set; try --encoding cp037"}},
    {"ascii_read_as_ebcdic",
     without_packed(),
     {"-l", "t.cpy", "--encoding", "cp500"},
     1,
     {"seem to be in another character set; try --encoding utf-8"}},
    {"latin_1_read_as_utf_8",
     "AB  K\xF6ln 012CD  K\xF6ln 345",
     TEXTS,
     1,
     {"try --encoding iso-8859-1"}},
    {"a_field_too_short",
     "AB  .Bonn 012" + PACKED + "CD  .Bonn 345" + PACKED,
     ITEM,
     1,
     {"the fields from count_of on seem to lie one byte later than the layout says"}},
    {"a_field_too_long",
     "AB Bonn 012" + PACKED + "CD Bonn 345" + PACKED,
     ITEM,
     1,
     {"the fields from count_of on seem to lie one byte earlier than the layout says"}},
    {"bytes_before_the_records",
     "HEAD" + THREE,
     ITEM,
     1,
     {"the records seem to begin 4 bytes into the file"}},
    {"an_ebcdic_copybook", THREE, {"-l", "ebcdic.cpy"}, 1, {"EBCDIC"}},
};

INSTANTIATE_TEST_SUITE_P(Files, CheckTest, testing::ValuesIn(CASES),
                         [](const auto& one) { return one.param.name; });

TEST_F(CheckTest, JsonHasPlacesAndCounts) {
    write_file("f", item("AB  ", "   ") + item("CD  ", "012"));
    const Outcome outcome =
        sxml({"check", "-", "-l", "i.cpy", "--json"}, item("AB  ", " \xC3\xA4"));
    EXPECT_EQ(outcome.status, 1) << outcome.err;
    const std::string program =
        "import json, sys; d = json.load(sys.stdin); f = d['bad_numbers']['first'][0]; "
        "c = [x for x in d['fields'] if x['path'] == 'count_of'][0]; "
        "print(d['input'], d['as'], d['loses'], d['records'], d['layouts'], f['path'], "
        "f['byte_offset'], f['bytes'], f['text'], c['invalid'], d['likely_reason'])";
    EXPECT_EQ(run({"python3", "-X", "utf8", "-c", program}, outcome.out).out,
              "standard input records True 1 {'item': 1} count_of 9 20 C3 A4  \xC3\xA4 1 None\n");
}

}  // namespace
