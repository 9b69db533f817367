// The command and COBOL programs make the same documents of the same records, and the same records
// of the same documents.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "tests/gnucobol/cobol_test.h"

namespace {

using namespace std::string_literals;

struct Layout {
    const char* name;
    const char* record;  // the name of its first 01
    int length;          // bytes
    const char* source;  // of the 01s
};

const Layout USAGES = {"usages", "USAGES", 63,
                       "       01  USAGES.\n"
                       "           05  WHOLE PIC 9(5).\n"
                       "           05  TRAILING PIC S9(3)V99.\n"
                       "           05  APART PIC S9(4) SIGN LEADING SEPARATE.\n"
                       "           05  PACKED PIC S9(5)V99 COMP-3.\n"
                       "           05  BARE PIC 9(5) COMP-6.\n"
                       "           05  BIG PIC S9(4) COMP.\n"
                       "           05  OWN-ORDER PIC S9(9) COMP-5.\n"
                       "           05  SHORT-FLOAT COMP-1.\n"
                       "           05  LONG-FLOAT COMP-2.\n"
                       "           05  SCALED PIC 9(2)PP.\n"
                       "           05  EDITED PIC -ZZ9.99.\n"
                       "           05  RIGHTMOST PIC X(4) JUSTIFIED RIGHT.\n"
                       "           05  LETTERS PIC A(3).\n"
                       "      *> sxml: hex\n"
                       "           05  HEXED PIC X(2).\n"
                       "           05  TEXT-OF PIC X(5).\n"};

const Layout KINDS = {"kinds", "SALE", 12,
                      "      *> sxml: when KIND OF SALE = \"S\"\n"
                      "       01  SALE.\n"
                      "           05  KIND PIC X.\n"
                      "           05  AMOUNT PIC S9(5)V99 COMP-3.\n"
                      "           05  ITEM-NO PIC 9(3).\n"
                      "           05  FILLER PIC X(4).\n"
                      "      *> sxml: when KIND OF PARTY = \"P\" OR \"C\"\n"
                      "       01  PARTY.\n"
                      "           05  KIND PIC X.\n"
                      "           05  PARTY-NAME PIC X(6).\n"
                      "      *> sxml: when KIND OF PARTY = \"P\"\n"
                      "           05  BORN PIC 9(5).\n"
                      "      *> sxml: when KIND OF PARTY = \"C\"\n"
                      "           05  COMPANY REDEFINES BORN.\n"
                      "               10  TAX-NO PIC X(4).\n"
                      "               10  RANK PIC S9 COMP-3.\n"};

// The table ends the record; its only entry has a table of its own.
const Layout TABLES = {"tables", "STOCK", 29,
                       "       01  STOCK.\n"
                       "           05  PLACE OCCURS 2.\n"
                       "               10  SHELF PIC X(2).\n"
                       "               10  QTY PIC 9(2) OCCURS 2.\n"
                       "           05  PARTS PIC 9.\n"
                       "           05  PART OCCURS 1 TO 2 DEPENDING ON PARTS.\n"
                       "               10  PART-NO PIC X(4).\n"
                       "               10  TONE PIC X(2) OCCURS 2.\n"};

// Copies records between the documents DOC and the plain file FLAT.
std::string program_of(const Layout& layout) {
    const std::string size = std::to_string(layout.length);
    const std::string record = layout.record;
    return "       IDENTIFICATION DIVISION.\n"
           "       PROGRAM-ID. AGREE.\n"
           "       ENVIRONMENT DIVISION.\n"
           "       INPUT-OUTPUT SECTION.\n"
           "       FILE-CONTROL.\n"
           "           SELECT DOC ASSIGN TO \"DOC\" FILE STATUS IS S.\n"
           "           SELECT FLAT ASSIGN TO \"FLAT\" FILE STATUS IS T.\n"
           "       DATA DIVISION.\n"
           "       FILE SECTION.\n"
           "       FD  DOC.\n" +
           std::string(layout.source) +
           "       FD  FLAT.\n"
           "       01  FLAT-RECORD PIC X(" +
           size +
           ").\n"
           "       WORKING-STORAGE SECTION.\n"
           "       01  S PIC XX.\n"
           "       01  T PIC XX.\n"
           "       01  WAY PIC X(5).\n"
           "       PROCEDURE DIVISION.\n"
           "           ACCEPT WAY FROM COMMAND-LINE.\n"
           "           IF WAY = \"write\" PERFORM WRITE-ALL ELSE PERFORM READ-ALL.\n"
           "           STOP RUN.\n"
           "       WRITE-ALL.\n"
           "           OPEN INPUT FLAT. OPEN OUTPUT DOC. READ FLAT.\n"
           "           PERFORM UNTIL T NOT = \"00\"\n"
           "               MOVE FLAT-RECORD TO " +
           record +
           "\n"
           "               WRITE " +
           record +
           "\n"
           "               IF S NOT = \"00\" DISPLAY \"write \" S END-IF\n"
           "               READ FLAT\n"
           "           END-PERFORM.\n"
           "           CLOSE FLAT. CLOSE DOC.\n"
           "       READ-ALL.\n"
           "           OPEN INPUT DOC. OPEN OUTPUT FLAT. READ DOC.\n"
           "           PERFORM UNTIL S >= \"10\"\n"
           "               MOVE " +
           record +
           " TO FLAT-RECORD\n"
           "               WRITE FLAT-RECORD\n"
           "               READ DOC\n"
           "           END-PERFORM.\n"
           "           IF S NOT = \"10\" DISPLAY \"read \" S.\n"
           "           CLOSE DOC. CLOSE FLAT.\n";
}

std::string document(const std::string& records, const std::string& encoding = "UTF-8") {
    return "<?xml version=\"1.0\" encoding=\"" + encoding + "\"?>\n<all>" + records + "</all>\n";
}

class AgreementTest : public CobolTest {
  protected:
    void SetUp() override {
        CobolTest::SetUp();
        setenv("SXML_PATH", ".", 1);
        setenv("DD_DOC", "cobol.xml", 1);
        setenv("DD_FLAT", "cobol.dat", 1);
    }
    void TearDown() override {
        for (const char* name : {"SXML_PATH", "DD_DOC", "DD_FLAT", "SXML_ENCODING"}) unsetenv(name);
        CobolTest::TearDown();
    }

    void compile(const Layout& layout) {
        write_file("agree.cbl", program_of(layout));
        const Outcome outcome = sxml({"cob", "agree.cbl", "-o", "agree"});
        ASSERT_EQ(outcome.status, 0) << outcome.err;
    }

    // Writes the records both ways. Result: the command's document.
    std::string written(const std::string& records, const std::string& encoding = "") {
        write_file("cobol.dat", records);
        write_file("command.dat", records);
        std::vector<std::string> words = {"to-xml",    "command.dat", "command.xml", "-l",
                                          "agree.cbl", "--fd",        "DOC"};
        if (!encoding.empty()) {
            setenv("SXML_ENCODING", encoding.c_str(), 1);
            words.insert(words.end(), {"--encoding", encoding});
        }
        const Outcome by_command = sxml(words);
        const Outcome by_cobol = run_program({"./agree", "write"});
        unsetenv("SXML_ENCODING");
        EXPECT_EQ(by_command.status, 0) << by_command.err;
        EXPECT_EQ(by_cobol.out + by_cobol.err, "");
        EXPECT_EQ(read_file("cobol.xml"), read_file("command.xml"));
        return read_file("command.xml");
    }

    // Reads a document both ways. Result: the command's records.
    std::string read_back(const std::string& text) {
        write_file("cobol.xml", text);
        write_file("command.xml", text);
        const Outcome by_command =
            sxml({"from-xml", "command.xml", "command.dat", "-l", "agree.cbl", "--fd", "DOC"});
        const Outcome by_cobol = run_program({"./agree", "read"});
        EXPECT_EQ(by_command.status, 0) << by_command.err;
        // Differences between the record and the document are reported.
        EXPECT_EQ(by_cobol.out, "");
        const std::string records = read_file("command.dat");
        EXPECT_TRUE(read_file("cobol.dat") == records)
            << text << "\nby the program: " << testing::PrintToString(read_file("cobol.dat"))
            << "\nby the command: " << testing::PrintToString(records);
        return records;
    }
};

TEST_F(AgreementTest, Usages) {
    compile(USAGES);
    const std::string full =
        "<whole>12345</whole><trailing>-1.25</trailing><apart>-42</apart><packed>-12345.67</packed>"
        "<bare>54321</bare><big>-1234</big><own_order>-123456789</own_order>"
        "<short_float>1.5</short_float><long_float>-2.25</long_float><scaled>1200</scaled>"
        "<edited>-12.50</edited><rightmost>ab</rightmost><letters>xyz</letters>"
        "<hexed>41</hexed><text_of>a&amp;b</text_of>";
    const std::string record = read_back(document("<usages>" + full + "</usages>"));
    ASSERT_EQ(record.size(), static_cast<std::size_t>(USAGES.length));
    EXPECT_EQ(record.substr(42, 11), " -12.50  ab");
    const std::string bodies[] = {
        "<usages/>",
        "<usages><whole>1</whole></usages><usages/>",
        "<usages><whole>x</whole><packed>1.999</packed><big>70000</big><scaled>7</scaled>"
        "<short_float>1e40</short_float></usages>",
        "<usages><text_of>123456789</text_of><rightmost>abcdef</rightmost><edited>1234567890"
        "</edited><letters>wxyz</letters><hexed>414243</hexed></usages>",
        "<usages><text_of>abc\xC3\xA9\xE2\x82\xAC</text_of><rightmost>a\xC3\xA9\xE2\x82\xAC"
        "</rightmost></usages>",
        "<usages><text_of> a  </text_of><edited>CR</edited><whole> 7 </whole><apart>+7</apart>"
        "</usages>",
        "<usages><whole>1</whole><TEXT_OF>upper</TEXT_OF><text_of>low</text_of></usages>",
        "<usages><whole></whole><text_of> </text_of><hexed> </hexed></usages>",
    };
    for (const std::string& body : bodies) read_back(document(body));
    read_back(
        document("<usages><text_of>\xE9\xE8\xE9\xE8\xE9\xE8</text_of></usages>", "ISO-8859-1"));
    const std::string rows[] = {record,
                                record + record,
                                "",
                                std::string(static_cast<std::size_t>(USAGES.length), '0'),
                                record.substr(0, 58) + "\xC3\xA9\xE2\x82\xAC",
                                record.substr(0, 58) + "ab\0\0\0"s};
    for (const std::string& row : rows) read_back(written(row));
    written(record.substr(0, 58) + "\xE9\xE8  x", "ISO-8859-1");
}

TEST_F(AgreementTest, KindsOfRecords) {
    compile(KINDS);
    const std::string sale = "S\x00\x12\x34\x5C"s + "007    ";
    const std::string rows[] = {sale, "PSmith 01965", "CAcme  T-12\x7C"s,
                                sale + "CAcme  T-12\x7D"s + "PJones 00001" + sale};
    for (const std::string& row : rows) read_back(written(row));
    const std::string bodies[] = {
        "<party><kind>P</kind><party_name>Miller</party_name></party>",
        "<any><kind>C</kind><tax_no>123456</tax_no></any>",
        "<sale><amount>1.5</amount><kind>S</kind></sale>",
        "<party><kind>P</kind></party><party><party_name>Smith</party_name></party>",
        "<sale/>",
    };
    for (const std::string& body : bodies) read_back(document(body));
}

TEST_F(AgreementTest, Tables) {
    compile(TABLES);
    const std::string rows[] = {"aa0102bb03042ABCDt1t2EFGHt3t4", "aa0102bb03041ABCDt1t2        ",
                                "  0000  00001      t2        "};
    for (const std::string& row : rows) {
        EXPECT_EQ(read_back(written(row)), row);
    }
    const std::string bodies[] = {
        "<stock><place><shelf>aa</shelf><qty>7</qty></place><parts>1</parts></stock>",
        "<stock><place><shelf>a</shelf></place><place><qty>1</qty><qty>2</qty></place>"
        "<place><shelf>c</shelf></place><parts>2</parts></stock>",
        "<stock><parts>1</parts><part><part_no>1</part_no><tone>c</tone><tone>d</tone></part>"
        "</stock>",
    };
    for (const std::string& body : bodies) read_back(document(body));
}

}  // namespace
