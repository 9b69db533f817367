// Character sets of the records' text.

#include "tests/command/command_run.h"

namespace {

const std::string COPYBOOK =
    "       01  MOVE.\n"
    "           05  WORD PIC X(5).\n"
    "           05  AMOUNT PIC S9(3)V99.\n"
    "           05  COUNTED PIC 9(3).\n"
    "           05  LEFT-SIGNED PIC S9(2) SIGN LEADING SEPARATE.\n"
    "           05  PACKED PIC S9(3) COMP-3.\n";

std::string moves(const std::string& word, const std::string& numbers) {
    return " <move>\r\n  <word>" + word + "</word>\r\n" + numbers + " </move>\r\n";
}

const std::string NUMBERS =
    "  <amount>-123.45</amount>\r\n  <counted>7</counted>\r\n"
    "  <left_signed>-12</left_signed>\r\n  <packed>-123</packed>\r\n";

const std::string ASCII_NUMBERS = "1234u007-12\x12\x3D";
const std::string EBCDIC_NUMBERS = "\xF1\xF2\xF3\xF4\xD5\xF0\xF0\xF7\x60\xF1\xF2\x12\x3D";

struct EncodingCase {
    const char* name;
    std::string encoding;
    std::string record;
    int status;
    std::string declared;  // with status 0
    std::string word;      // with status 0: in the document
    std::string said;
};

void PrintTo(const EncodingCase& one, std::ostream* out) {
    *out << one.name;
}

class CharactersTest : public CommandTest {
  protected:
    static Outcome run_on(const std::string& command, std::vector<std::string> words) {
        words.insert(words.begin(), command);
        return sxml(words);
    }
};

class EncodingTest : public CommandTest, public testing::WithParamInterface<EncodingCase> {};

TEST_P(EncodingTest, TextAndNumbersComeOutRight) {
    const EncodingCase& expected = GetParam();
    write_file("m.cpy", COPYBOOK);
    write_file("m.dat", expected.record);
    const Outcome outcome =
        sxml({"to-xml", "m.dat", "m.xml", "--layout", "m.cpy", "--encoding", expected.encoding});
    EXPECT_EQ(outcome.status, expected.status);
    EXPECT_NE(outcome.err.find(expected.said), std::string::npos) << outcome.err;
    if (expected.status != 0) {
        EXPECT_EQ(files(), (std::vector<std::string>{"m.cpy", "m.dat"}));
        return;
    }
    const std::string document = read_file("m.xml");
    EXPECT_EQ(document.find("<?xml version=\"1.0\" encoding=\"" + expected.declared + "\"?>"), 0U)
        << document.substr(0, 60);
    EXPECT_NE(document.find(moves(expected.word, NUMBERS)), std::string::npos) << document;
    const Outcome judged = run({"xmllint", "--noout", "--valid", "m.xml"});
    EXPECT_EQ(judged.status, 0) << judged.err;
}

const std::vector<EncodingCase> CASES = {
    {"utf8", "UTF-8", "Caf\xC3\xA9" + ASCII_NUMBERS, 0, "UTF-8", "Caf\xC3\xA9", ""},
    {"latin1", "iso-8859-1", "Caf\xE9 " + ASCII_NUMBERS, 0, "ISO-8859-1", "Caf\xE9", ""},
    {"latin1_control", "iso-8859-1", "Caf\x1F " + ASCII_NUMBERS, 1, "", "",
     "record 1, field word, byte offset 3 (3 in the record): the byte 0x1F is a control"},
    {"windows", "windows-1252", "Caf\xE9\x80" + ASCII_NUMBERS, 0, "UTF-8",
     "Caf\xC3\xA9\xE2\x82\xAC", ""},
    {"windows_undefined", "windows-1252", "Caf\x81 " + ASCII_NUMBERS, 1, "", "",
     "the byte 0x81 is no character of windows-1252"},
    {"ascii", "us-ascii", "Caf\xE9 " + ASCII_NUMBERS, 1, "", "", "the byte 0xE9 is no character"},
    {"cp037", "cp037", "\xC3\x81\x86\x51\x4C" + EBCDIC_NUMBERS, 0, "UTF-8", "Caf\xC3\xA9&lt;", ""},
    {"cp1047_brackets", "cp1047", "\xAD\xBD\x40\x40\x40" + EBCDIC_NUMBERS, 0, "UTF-8", "[]", ""},
    {"cp037_brackets", "cp037", "\xBA\xBB\x40\x40\x40" + EBCDIC_NUMBERS, 0, "UTF-8", "[]", ""},
    {"cp273", "cp273", "\xC0\x4A\x6A\x40\x40" + EBCDIC_NUMBERS, 0, "UTF-8",
     "\xC3\xA4\xC3\x84\xC3\xB6", ""},
    {"euro_in_ebcdic", "ibm1140", "\x9F\x40\x40\x40\x40" + EBCDIC_NUMBERS, 0, "UTF-8",
     "\xE2\x82\xAC", ""},
    {"ebcdic_control", "cp037", "\xC3\x01\x40\x40\x40" + EBCDIC_NUMBERS, 1, "", "",
     "the byte 0x01 is a control character"},
};

INSTANTIATE_TEST_SUITE_P(Sets, EncodingTest, testing::ValuesIn(CASES),
                         [](const auto& test) { return std::string(test.param.name); });

// Documents in single-byte sets, when SXML_ENCODING says so.
TEST_F(CharactersTest, DocumentsMayStayInSingleByteSets) {
    write_file("m.cpy", COPYBOOK);
    const struct {
        std::string encoding, setting, word, said;
        int status;
        std::string numbers, declared, text;
    } cases[] = {
        {"cp037", "ISO-8859-1", "\xC3\x81\x86\x51\x40", "", 0, EBCDIC_NUMBERS, "ISO-8859-1",
         "Caf\xE9"},
        {"ibm1140", "ISO-8859-1", "\x9F\x40\x40\x40\x40",
         "the byte 0x9F is a character of ibm1140 that ISO-8859-1 lacks", 1, EBCDIC_NUMBERS, "",
         ""},
        {"windows-1252", "windows-1252", "Caf\xE9\x80", "", 0, ASCII_NUMBERS, "WINDOWS-1252",
         "Caf\xE9\x80"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.encoding);
        write_file("m.dat", each.word + each.numbers);
        const Outcome outcome = sxml({"to-xml", "m.dat", "-", "-l", "m.cpy", "--encoding",
                                      each.encoding, "--set", "SXML_ENCODING=" + each.setting});
        EXPECT_EQ(outcome.status, each.status);
        EXPECT_NE(outcome.err.find(each.said), std::string::npos) << outcome.err;
        if (each.status != 0) continue;
        EXPECT_EQ(outcome.out.find("<?xml version=\"1.0\" encoding=\"" + each.declared), 0U);
        EXPECT_NE(outcome.out.find("<word>" + each.text + "</word>"), std::string::npos)
            << outcome.out;
    }
}

// Characters of two bytes, judged by iconv: in PIC X with shifts in EBCDIC and without them in
// ASCII, in PIC G without, and PIC N in UTF-16.
TEST_F(CharactersTest, CharactersOfTwoBytesComeBack) {
    write_file("t.txt", "ab\u4E2D\u5B57c");
    write_file("g.txt", "\u4E2D\u5B57");
    const auto in = [](const std::string& set, const std::string& file) {
        return run({"iconv", "-f", "utf-8", "-t", set, file}).out;
    };
    const auto padded = [](std::string text, std::size_t size, char blank) {
        text.resize(size, blank);
        return text;
    };
    write_file("e.cpy",
               "       01  R.\n           05  X PIC X(10).\n"
               "           05  G PIC G(3) DISPLAY-1.\n           05  N PIC N(3) NATIONAL.\n"
               "           05  B PIC X(2) OCCURS 2.\n");
    const std::string utf16 = std::string("\0\xE9\x20\xAC\0 ", 6);
    for (const std::string set : {"IBM930", "IBM933", "IBM935", "IBM937", "IBM939", "IBM1388",
                                  "IBM1364", "IBM1371", "IBM1390", "IBM1399"}) {
        SCOPED_TRACE(set);
        const std::string wide = in(set, "g.txt");
        ASSERT_EQ(wide.size(), 6U);
        const std::string record = padded(in(set, "t.txt"), 10, '\x40') +
                                   padded(wide.substr(1, 4), 6, '\x40') + utf16 +
                                   "\x40\x40\x40\x40";
        write_file("e.dat", record);
        EXPECT_EQ(sxml({"to-xml", "e.dat", "e.xml", "-l", "e.cpy", "--encoding", set}).err, "");
        const std::string document = read_file("e.xml");
        EXPECT_NE(document.find("<x>ab\u4E2D\u5B57c</x>\r\n  <g>\u4E2D\u5B57</g>\r\n"
                                "  <n>\u00E9\u20AC</n>"),
                  std::string::npos)
            << document;
        EXPECT_EQ(sxml({"from-xml", "e.xml", "f.dat", "-l", "e.cpy", "--encoding", set}).err, "");
        EXPECT_EQ(read_file("f.dat"), record);
        const std::vector<std::string> shown = {"e.dat", "-l", "e.cpy", "--encoding", set};
        EXPECT_NE(run_on("dump", shown).out.find("NATIONAL   '\u00E9\u20AC'"), std::string::npos);
        EXPECT_EQ(run_on("check", shown).status, 0);
    }
    const Outcome narrow = sxml({"to-xml", "e.dat", "-", "-l", "e.cpy", "--encoding", "IBM939",
                                 "--set", "SXML_ENCODING=ISO-8859-1"});
    EXPECT_EQ(narrow.status, 2);
    EXPECT_NE(narrow.err.find("documents can have its characters in UTF-8"), std::string::npos);
    // Cut after a whole character, with its shift; fields without an element are blank.
    write_file("c.xml",
               "<d><r><x>abcd\u4E2D\u5B57\u4E2D</x><g>\u4E2D\u5B57\u4E2D\u5B57</g>"
               "<n>ab\U0001F600</n></r><r><x>x</x></r></d>");
    const Outcome cut = sxml({"from-xml", "c.xml", "c.dat", "-l", "e.cpy", "--encoding", "IBM939"});
    EXPECT_NE(cut.err.find("field x: a text of 12 bytes was cut to fit into 10"), std::string::npos)
        << cut.err;
    EXPECT_NE(cut.err.find("field n: a text of 8 bytes was cut to fit into 6"), std::string::npos);
    write_file("x.txt", "abcd\u4E2D\u5B57");
    const std::string wide = in("IBM939", "g.txt").substr(1, 4);
    EXPECT_EQ(read_file("c.dat"), in("IBM939", "x.txt") + wide + wide.substr(0, 2) +
                                      std::string("\0a\0b\0 ", 6) + "\x40\x40\x40\x40" + "\xA7" +
                                      std::string(15, '\x40') + std::string("\0 \0 \0 ", 6) +
                                      "\x40\x40\x40\x40");
    write_file("e.dat", padded("\x81\x0E\x4F\x58", 26, '\x40'));
    EXPECT_NE(sxml({"to-xml", "e.dat", "-", "-l", "e.cpy", "--encoding", "IBM939"})
                  .err.find("the byte 0x40 is no character of IBM939"),
              std::string::npos);
    write_file("a.cpy", "       01  R.\n           05  X PIC X(8).\n");
    write_file("a.dat", "\x8F\xB0\xA1     ");
    EXPECT_NE(sxml({"to-xml", "a.dat", "-", "-l", "a.cpy", "--encoding", "EUC-JP"})
                  .err.find("the bytes 0x8F 0xB0 are the start of a character of more than two"),
              std::string::npos);
    // Of several pairs for one character, iconv's.
    for (const auto& [set, text] :
         {std::pair("CP932", "\u7E8A\u2252"), {"BIG5", "\u5140\u55C0"}, {"BIG5", "\u5341\u5345"}}) {
        write_file("w.txt", std::string(text) + "  ");
        const std::string pairs = in(set, "w.txt");
        ASSERT_EQ(pairs.size(), 6U) << set;
        write_file("w.dat", pairs + "  ");
        EXPECT_EQ(sxml({"to-xml", "w.dat", "w.xml", "-l", "a.cpy", "--encoding", set}).err, "");
        EXPECT_EQ(sxml({"from-xml", "w.xml", "b.dat", "-l", "a.cpy", "--encoding", set}).err, "");
        EXPECT_EQ(read_file("b.dat"), read_file("w.dat")) << set;
    }
    for (const std::string set : {"CP932", "GBK", "BIG5", "EUC-JP"}) {
        SCOPED_TRACE(set);
        write_file("a.dat", padded(in(set, "t.txt"), 8, ' '));
        EXPECT_EQ(sxml({"to-xml", "a.dat", "a.xml", "-l", "a.cpy", "--encoding", set}).err, "");
        EXPECT_NE(read_file("a.xml").find("<x>ab\u4E2D\u5B57c</x>"), std::string::npos);
        EXPECT_EQ(sxml({"from-xml", "a.xml", "b.dat", "-l", "a.cpy", "--encoding", set}).err, "");
        EXPECT_EQ(read_file("b.dat"), read_file("a.dat"));
    }
}

// PIC N and what a document cannot hold of it: characters of UTF-16, and halves of them.
TEST_F(CharactersTest, NationalTextsThatCannotBeAreNamed) {
    write_file("n.cpy", "       01  R.\n           05  X PIC X.\n           05  N PIC N(3).\n");
    const struct {
        std::string setting, text, said, written;
    } cases[] = {
        {"ISO-8859-1", {"\0\xE9\0 \0 ", 6}, "", "<n>\xE9</n>"},
        {"ISO-8859-1",
         {"\0a\x30\x42\0 ", 6},
         "field n, byte offset 3 (3 in the record): the bytes 0x30 0x42 are a character of UTF-16 "
         "that ISO-8859-1 "
         "lacks",
         ""},
        {"ISO-8859-1", {"\x04\x16\0 \0 ", 6}, "the bytes 0x04 0x16 are a character of UTF-16", ""},
        {"UTF-8", {"\x04\x16\0 \0 ", 6}, "", "<n>\u0416</n>"},
        {"UTF-8",
         {"\0a\0\x01\0 ", 6},
         "the bytes 0x00 0x01 are a control character that XML does not allow",
         ""},
        {"UTF-8", {"\0a\0\0\0b", 6}, "a NUL byte with text after it", ""},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(testing::PrintToString(each.text));
        write_file("n.dat", "\xE7" + each.text);
        const Outcome outcome = sxml({"to-xml", "n.dat", "-", "-l", "n.cpy", "--encoding", "cp037",
                                      "--set", "SXML_ENCODING=" + each.setting});
        EXPECT_EQ(outcome.status, each.said.empty() ? 0 : 1);
        EXPECT_NE(outcome.err.find(each.said), std::string::npos) << outcome.err;
        EXPECT_NE(outcome.out.find(each.written), std::string::npos) << outcome.out;
    }
}

// The record's end cuts a field of two bytes a character.
TEST_F(CharactersTest, CutNationalTextsAreFilledUp) {
    write_file("n.cpy", "       01  R.\n           05  X PIC X.\n           05  N PIC N(3).\n");
    const std::vector<std::string> words = {
        "n.dat", "-", "-l", "n.cpy", "--encoding", "cp037", "--record-format", "rdw"};
    write_file("n.dat", std::string("\0\x09\0\0\xE7\0a\x4E\0", 9));
    const Outcome filled = run_on("to-xml", words);
    EXPECT_EQ(filled.status, 0);
    EXPECT_NE(filled.out.find("<n>a\u4E00</n>"), std::string::npos) << filled.out;
    write_file("n.dat", std::string("\0\x08\0\0\xE7\0a\x4E", 8));
    const Outcome halved = run_on("to-xml", words);
    EXPECT_EQ(halved.status, 1);
    EXPECT_NE(halved.err.find("field n, byte offset 5 (1 in the record): the record ends within"),
              std::string::npos)
        << halved.err;
    // What a field ends with that looks like a NUL byte.
    write_file("n.dat", std::string("\xE7\0a\0b\x4E\0", 7));
    const Outcome whole = sxml({"check", "n.dat", "-l", "n.cpy", "--encoding", "cp037"});
    EXPECT_NE(whole.out.find("6  ab\u4E00  "), std::string::npos) << whole.out;
}

// Control characters, and NUL bytes before a text.
TEST_F(CharactersTest, ControlCharactersAreTreatedAsAsked) {
    write_file("c.cpy", "       01  R.\n           05  X PIC X(4).\n           05  Y PIC X(4).\n");
    const std::string record("a\x01\x62\0text\0c d\x02   ", 16);
    const struct {
        const char *controls, *first, *second, *blank;
    } cases[] = {
        {"replace", "a\uFFFDb", "\uFFFDc d", "\uFFFD"},
        {"drop", "ab", "c d", ""},
        {"hex", "61016200", "00632064", "02202020"},
    };
    const std::string place = "sxml: warning: c.dat: record ";
    const std::string what = ": 1 control character was dropped or replaced, as --controls says\n";
    const std::string lost =
        place + "1, field x, byte offset 1" + what + place + "2, field x, byte offset 8" + what +
        place + "2, field y, byte offset 12" + what +
        "sxml: warning: c.dat: 3 texts with control characters that were dropped or replaced\n";
    write_file("c.dat", record);
    const std::vector<std::string> words = {"c.dat", "c.xml", "-l", "c.cpy"};
    EXPECT_EQ(run_on("to-xml", words).status, 1);
    for (const auto& each : cases) {
        SCOPED_TRACE(each.controls);
        std::vector<std::string> all = words;
        all.insert(all.end(), {"--controls", each.controls});
        const bool is_lost = std::string(each.controls) != "hex";
        EXPECT_EQ(run_on("to-xml", all).err, is_lost ? lost : "");
        const std::vector<std::string> how = {"-l", "c.cpy", "--controls", each.controls};
        EXPECT_EQ(run_on("check", {"c.dat", how[0], how[1], how[2], how[3]}).status,
                  is_lost ? 1 : 0);
        all.emplace_back("--strict");
        EXPECT_EQ(run_on("to-xml", all).status, is_lost ? 1 : 0);
        all.pop_back();
        run_on("to-xml", all);
        const std::string document = read_file("c.xml");
        EXPECT_NE(document.find("<x>" + std::string(each.first) + "</x>\r\n  <y>text</y>"),
                  std::string::npos)
            << document;
        EXPECT_NE(
            document.find("<x>" + std::string(each.second) + "</x>\r\n  <y>" + each.blank + "</y>"),
            std::string::npos)
            << document;
    }
    EXPECT_EQ(sxml({"from-xml", "c.xml", "d.dat", "-l", "c.cpy", "--controls", "hex"}).err, "");
    EXPECT_EQ(read_file("d.dat"), record);
    write_file("c.dat", std::string("\x81\x01\x82\x40\xA3\x85\xA7\xA3", 8));
    const Outcome ebcdic = sxml(
        {"to-xml", "c.dat", "-", "-l", "c.cpy", "--encoding", "cp037", "--controls", "replace"});
    EXPECT_NE(ebcdic.out.find("<x>a\uFFFDb</x>"), std::string::npos) << ebcdic.out;
}

// Binary data comes back from its digits.
TEST_F(CharactersTest, HexadecimalDigitsBecomeBytes) {
    write_file("h.cpy",
               "       01  R.\n      *> sxml: hex\n           05  X PIC X(3).\n"
               "      *> sxml: hex\n           05  P PIC S9(3) COMP-3.\n");
    const std::string record("\x01\xFE\0\x12\x3C", 5);
    write_file("h.dat", record);
    EXPECT_EQ(sxml({"to-xml", "h.dat", "h.xml", "-l", "h.cpy"}).err, "");
    EXPECT_NE(read_file("h.xml").find("<x>01FE00</x>\r\n  <p>123C</p>"), std::string::npos);
    for (const std::string set : {"utf-8", "cp037"}) {
        EXPECT_EQ(sxml({"from-xml", "h.xml", "i.dat", "-l", "h.cpy", "--encoding", set}).err, "");
        EXPECT_EQ(read_file("i.dat"), record);
    }
    write_file("h.xml", "<d><r><x>01f</x><p>12345C</p></r><r><x>0a</x></r></d>");
    const Outcome odd = sxml({"from-xml", "h.xml", "i.dat", "-l", "h.cpy"});
    EXPECT_NE(odd.err.find("field x: not hexadecimal digits of 3 bytes: '01f'"), std::string::npos)
        << odd.err;
    EXPECT_NE(odd.err.find("field p: a text of 3 bytes was cut to fit into 2"), std::string::npos);
    EXPECT_EQ(read_file("i.dat"), std::string("\0\0\0\x12\x34\x0A\0\0\0\0", 10));
}

TEST_F(CommandTest, EbcdicFieldsThatHoldNoNumberAreNamed) {
    write_file("m.cpy", COPYBOOK);
    write_file("m.dat", "\xC3\x40\x40\x40\x40" + EBCDIC_NUMBERS + "\xC3\x40\x40\x40\x40" +
                            "\xF1\xF2\xC1\xF4\xD5\xF0\xF0\xF7\x60\xF1\xF2\x12\x3D");
    const Outcome outcome = sxml({"to-xml", "m.dat", "m.xml", "-l", "m.cpy", "--encoding=cp037"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.err.find("m.dat: record 2, field amount, byte offset 23: not a valid "
                               "number: X'F1F2C1F4D5'"),
              std::string::npos)
        << outcome.err;
}

// Layouts are chosen on the untranslated records.
// Binary items as mainframes have them, both ways, also through a description file.
TEST_F(CommandTest, EbcdicRecordsAreOfAMainframe) {
    write_file("b.cpy",
               "       01  B-REC.\n           05  C5 PIC S9(4) COMP-5.\n"
               "           05  F1 COMP-1.\n           05  F2 COMP-2.\n");
    const std::string record = std::string("\xFF\xFE", 2) + std::string("\xC2\x76\xA0\0", 4) +
                               std::string("\x40\x19\x99\x99\x99\x99\x99\x9A", 8);
    const std::string values = "  <c5>-2</c5>\r\n  <f1>-118.625</f1>\r\n  <f2>0.1</f2>\r\n";
    write_file("b.dat", record);
    EXPECT_EQ(sxml({"to-xml", "b.dat", "b.xml", "-l", "b.cpy", "--encoding", "cp037"}).err, "");
    EXPECT_NE(read_file("b.xml").find(values), std::string::npos) << read_file("b.xml");
    EXPECT_EQ(sxml({"from-xml", "b.xml", "c.dat", "-l", "b.cpy", "--encoding", "cp037"}).err, "");
    EXPECT_EQ(read_file("c.dat"), record);
    EXPECT_EQ(sxml({"compile", "b.cpy", "-o", "b.xfd", "--machine", "mainframe"}).err, "");
    EXPECT_EQ(sxml({"from-xml", "b.xml", "d.dat", "-l", "b.xfd"}).err, "");
    EXPECT_EQ(read_file("d.dat"), record);
    const Outcome native =
        sxml({"to-xml", "b.dat", "-", "-l", "b.cpy", "--encoding", "cp037", "--machine", "native"});
    EXPECT_NE(native.out.find("<c5>-257</c5>"), std::string::npos) << native.out;
    write_file("e.xml", "<b><b_rec><f1>1e76</f1></b_rec></b>");
    const Outcome large = sxml({"from-xml", "e.xml", "e.dat", "-l", "b.xfd"});
    EXPECT_NE(large.err.find("field f1: not a number that fits"), std::string::npos) << large.err;
}

// Binary items in files of cobc's programs, compiled with each choice of sizes and byte order.
TEST_F(CommandTest, BinaryItemsAreAsTheCompilerMakesThem) {
    write_file("items.cpy",
               "       01  R.\n           05  A PIC S9(2) COMP.\n           05  B PIC 9(7) COMP.\n"
               "           05  C PIC S9(10) COMP.\n           05  D PIC S9(2) COMP-5.\n"
               "           05  E PIC S9(5) COMP-5.\n");
    write_file("b.cob",
               "       IDENTIFICATION DIVISION.\n       PROGRAM-ID. B.\n"
               "       ENVIRONMENT DIVISION.\n       INPUT-OUTPUT SECTION.\n"
               "       FILE-CONTROL.\n           SELECT F ASSIGN TO \"b.dat\".\n"
               "       DATA DIVISION.\n       FILE SECTION.\n       FD F.\n"
               "       COPY \"items.cpy\".\n       PROCEDURE DIVISION.\n           OPEN OUTPUT F.\n"
               "           MOVE -12 TO A. MOVE 1234567 TO B.\n"
               "           MOVE -1234567890 TO C. MOVE -34 TO D. MOVE -12345 TO E.\n"
               "           WRITE R.\n           CLOSE F.\n           STOP RUN.\n");
    const std::vector<std::vector<std::string>> choices = {
        {"-fbinary-size=1-2-4-8", "--binary-size", "1-2-4-8"},
        {"-fbinary-size=1--8", "--binary-size", "1--8"},
        {"-fbinary-size=2-4-8", "--binary-size", "2-4-8"},
        {"-fbinary-byteorder=native", "--byte-order", "native"},
        {"-fbinary-byteorder=big-endian", "--byte-order", "big-endian"}};
    for (const auto& choice : choices) {
        SCOPED_TRACE(choice[0]);
        ASSERT_EQ(run({"cobc", "-x", "-w", choice[0], "b.cob", "-o", "b"}).status, 0);
        ASSERT_EQ(run({"./b"}).status, 0);
        const auto convert = [&](const std::string& way, const std::string& in,
                                 const std::string& out) {
            return sxml({way, in, out, "-l", "items.cpy", choice[1], choice[2]}).err;
        };
        EXPECT_EQ(convert("to-xml", "b.dat", "out.xml"), "");
        EXPECT_NE(read_file("out.xml").find("  <a>-12</a>\r\n  <b>1234567</b>\r\n"
                                            "  <c>-1234567890</c>\r\n  <d>-34</d>\r\n"
                                            "  <e>-12345</e>\r\n"),
                  std::string::npos)
            << read_file("out.xml");
        EXPECT_EQ(convert("from-xml", "out.xml", "back.dat"), "");
        EXPECT_EQ(read_file("back.dat"), read_file("b.dat"));
    }
}

TEST_F(CommandTest, EbcdicLayoutsAreToldApart) {
    write_file("k.cpy",
               "      *> sxml: when IS-TEXT\n"
               "       01  A-TEXT.\n"
               "           05  KIND PIC X.\n"
               "               88  IS-TEXT VALUE \"T\".\n"
               "           05  WORD PIC X(3).\n"
               "      *> sxml: when IS-SUM\n"
               "       01  A-SUM.\n"
               "           05  SUM-KIND PIC X.\n"
               "               88  IS-SUM VALUE \"S\".\n"
               "           05  TOTAL PIC S9(5) COMP-3.\n");
    write_file("k.dat", "\xE3\x81\x82\x83\xE2\x12\x34\x5D");
    const Outcome outcome = sxml({"to-xml", "k.dat", "-", "-l", "k.cpy", "--encoding", "cp500"});
    EXPECT_EQ(outcome.err, "");
    EXPECT_NE(outcome.out.find(" <a_text>\r\n  <kind>T</kind>\r\n  <word>abc</word>\r\n"
                               " </a_text>\r\n <a_sum>\r\n  <sum_kind>S</sum_kind>\r\n"
                               "  <total>-12345</total>\r\n </a_sum>\r\n"),
              std::string::npos)
        << outcome.out;
}

// Bytes outside the layout that applies, and after the record's end, are not text of the document.
TEST_F(CommandTest, OnlyFieldsOfTheRecordAreChecked) {
    write_file("k.cpy",
               "      *> sxml: when IS-TEXT\n"
               "       01  A-TEXT.\n"
               "           05  KIND PIC X.\n"
               "               88  IS-TEXT VALUE \"T\".\n"
               "           05  WORD PIC X(3).\n"
               "      *> sxml: when IS-SUM\n"
               "       01  A-SUM.\n"
               "           05  SUM-KIND PIC X.\n"
               "               88  IS-SUM VALUE \"S\".\n"
               "           05  TOTAL PIC S9(5) COMP-3.\n");
    write_file("good", std::string("S\x00\x01\x2C", 4) + "Tabc");
    EXPECT_EQ(sxml({"to-xml", "good", "good.xml", "-l", "k.cpy"}).err, "");
    write_file("bad", std::string("S\x00\x01\x2C", 4) + "Ta\x01\x2C");
    EXPECT_NE(sxml({"to-xml", "bad", "bad.xml", "-l", "k.cpy"}).err.find("record 2, field word"),
              std::string::npos);
}

// In EBCDIC, two views of the same bytes can contradict each other.
TEST_F(CommandTest, EbcdicFieldsThatShareBytesAreTakenFromTheRecord) {
    const std::string two_views =
        "       01  VIEWS.\n           05  WORD PIC X(2).\n"
        "      *> sxml: when NUMERIC-VIEW\n"
        "           05  AMOUNT REDEFINES WORD PIC S9(3) COMP-3.\n"
        "           05  VIEW PIC X.\n"
        "               88  NUMERIC-VIEW VALUE \"N\" \"B\".\n"
        "               88  TEXT-VIEW VALUE \"T\" \"B\".\n";
    std::string with_conditions = two_views;
    with_conditions.insert(with_conditions.find("           05  WORD"),
                           "      *> sxml: when TEXT-VIEW\n");
    write_file("v.cpy", with_conditions);
    write_file("v.dat", "\x12\x3D\xD5\x81\x82\xE3");
    const std::vector<std::string> words = {"to-xml", "v.dat",      "-",    "-l",
                                            "v.cpy",  "--encoding", "cp037"};
    const Outcome apart = sxml(words);
    EXPECT_EQ(apart.err, "");
    EXPECT_NE(apart.out.find("<amount>-123</amount>"), std::string::npos) << apart.out;
    EXPECT_NE(apart.out.find("<word>ab</word>"), std::string::npos) << apart.out;
    write_file("v.dat", "\x12\x3D\xD5\x81\x82\xC2");
    const Outcome both = sxml(words);
    EXPECT_NE(both.err.find("v.dat: record 2, field amount, byte offset 3: not a valid number"),
              std::string::npos)
        << both.err;
    EXPECT_NE(both.out.find("<word>ab</word>\r\n  <amount>818</amount>"), std::string::npos);
}

}  // namespace
