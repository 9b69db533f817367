// Layouts: the table, description files, DTDs and schemas.

#include "tests/command/command_run.h"

namespace {

class LayoutTest : public CommandTest {};

TEST_F(LayoutTest, TableShowsEveryItem) {
    const Outcome outcome = sxml({"layout", EXAMPLES + "ledger.cpy"});
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(
        outcome.out,
        R"(Offset  Length  Level  Name                 Element            Picture   Usage    Occurs  Condition
     0      58  01     ACCOUNT              account                                       RECORD-KIND = "A"
     0       1  05       RECORD-KIND        record_kind        X         DISPLAY
     1       8  05       ACCOUNT-NUMBER     account_number     9(8)      DISPLAY
     9      30  05       HOLDER             holder             X(30)     DISPLAY
    39       8  05       OPENED-ON          opened_on          9(8)      DISPLAY
    47       6  05       OPENING-BALANCE    opening_balance    S9(9)V99  COMP-3
    53       1  05       OVERDRAFT-ALLOWED  overdraft_allowed  X         DISPLAY
    54       4  05       FILLER                                X(4)      DISPLAY
     0      58  01     BOOKING              booking                                       RECORD-KIND = "B" OR RECORD-KIND = "R"
     0       1  05       BOOKING-KIND       booking_kind       X         DISPLAY
     1       8  05       BOOKING-ACCOUNT    booking_account    9(8)      DISPLAY
     9       2  05       SEQUENCE-NUMBER    sequence_number    9(4)      COMP
    11       8  05       BOOKED-ON          booked_on          9(8)      DISPLAY
    19       9  05       AMOUNT             amount             S9(7)V99  DISPLAY
    28      30  05       PURPOSE            purpose            X(30)     DISPLAY

Record length: 58 bytes
)");
}

TEST_F(LayoutTest, TableShowsTablesAndVaryingLengths) {
    write_file("v.cpy",
               "       01  V.\n           05  N PIC 9.\n"
               "           05  ROW-GROUP OCCURS 1 TO 3 DEPENDING ON N.\n"
               "               10  CELL PIC S9(4) COMP OCCURS 2.\n"
               "               10  LABEL-TEXT PIC X(4).\n"
               "               10  LABEL-NUMBER REDEFINES LABEL-TEXT PIC 9(4).\n");
    const Outcome outcome = sxml({"layout", "v.cpy"});
    EXPECT_EQ(
        outcome.out,
        R"(Offset  Length  Level  Name              Element     Picture  Usage    Occurs                 Redefines   Condition
     0      25  01     V                 v
     0       1  05       N               n           9        DISPLAY
     1       8  05       ROW-GROUP       row_group                     1 to 3 depending on N
     1       2  10         CELL          cell        S9(4)    COMP     2
     5       4  10         LABEL-TEXT    label_text  X(4)     DISPLAY
     5       4  10         LABEL-NUMBER              9(4)     DISPLAY                         LABEL-TEXT

Record length: 9 to 25 bytes
)");
}

// Python reads both forms, and finds the same in them.
TEST_F(LayoutTest, ProgramsReadJsonAndCsv) {
    write_file("v.cpy",
               "       01  V.\n           05  N PIC 9.\n"
               "      *> sxml: when N > 0\n"
               "           05  FIRST-NAME PIC X(2).\n"
               "           05  FILLER PIC X(1).\n"
               "           05  ROW-GROUP OCCURS 1 TO 3 DEPENDING ON N.\n"
               "               10  FILLER.\n"
               "                   15  CELL PIC S9(4) COMP OCCURS 2.\n"
               "               10  LABEL-TEXT PIC X(4).\n"
               "               10  LABEL-NUMBER REDEFINES LABEL-TEXT PIC 9(4).\n");
    write_file("json", sxml({"layout", "v.cpy", "--json"}).out);
    write_file("csv", sxml({"layout", "v.cpy", "--csv"}).out);
    const std::string program =
        "import csv, json\n"
        "layout = json.load(open('json'))\n"
        "rows = list(csv.DictReader(open('csv', newline='')))\n"
        "as_text = [{key: '' if value is None else str(value) for key, value in item.items()}\n"
        "           for item in layout['items']]\n"
        "assert rows == as_text, (rows, as_text)\n"
        "print(layout['name'], layout['record_length'], layout['min_record_length'])\n"
        "for row in rows: print('|'.join(row.values()))\n";
    const Outcome outcome = run({"python3", "-c", program});
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out,
              "v_file 28 12\n"
              "1|V|v|v|0|28||||||||\n"
              "5|N|n|v/n|0|1|9|DISPLAY||||||\n"
              "5|FIRST-NAME|first_name|v/first_name|1|2|X(2)|DISPLAY||||||N > 0\n"
              "5||||3|1|X(1)|DISPLAY||||||\n"
              "5|ROW-GROUP|row_group|v/row_group|4|8|||1|3|8|N||\n"
              "10||||4|4||||||||\n"
              "15|CELL|cell|v/row_group/cell|4|2|S9(4)|COMP|2|2|2|||\n"
              "10|LABEL-TEXT|label_text|v/row_group/label_text|8|4|X(4)|DISPLAY||||||\n"
              "10|LABEL-NUMBER|||8|4|9(4)|DISPLAY|||||LABEL-TEXT|\n");
    EXPECT_EQ(sxml({"layout", "v.cpy", "--csv", "--json"}).status, 2);
}

// A condition is shown at the outermost item that it holds for, and where another one joins it.
TEST_F(LayoutTest, TableShowsEachConditionOnce) {
    write_file("cond.cpy",
               "       01  C.\n           05  K PIC X.\n      *> sxml: when K = \"A\"\n"
               "           05  P.\n               10  P1 PIC X.\n               10  Q.\n"
               "                   15  Q1 PIC X.\n      *> sxml: when P1 = \"x\"\n"
               "                   15  Q2 PIC X.\n                   15  Q3 REDEFINES Q2 PIC X.\n"
               "               10  T OCCURS 2.\n                   15  T1 PIC X.\n"
               "      *> sxml: when K = \"B\"\n           05  R REDEFINES P PIC X(5).\n");
    const Outcome outcome = sxml({"layout", "cond.cpy"});
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(
        outcome.out,
        R"(Offset  Length  Level  Name      Element  Picture  Usage    Occurs  Redefines  Condition
     0       6  01     C         c
     0       1  05       K       k        X        DISPLAY
     1       5  05       P       p                                             K = "A"
     1       1  10         P1    p1       X        DISPLAY
     2       2  10         Q     q
     2       1  15           Q1  q1       X        DISPLAY
     3       1  15           Q2  q2       X        DISPLAY                     K = "A" AND P1 = "x"
     3       1  15           Q3  q3       X        DISPLAY          Q2         K = "A" AND NOT (P1 = "x")
     4       1  10         T     t                          2
     4       1  15           T1  t1       X        DISPLAY
     1       5  05       R       r        X(5)     DISPLAY          P          K = "B"

Record length: 6 bytes
)");
}

// What comes after a table of varying size moves: the user says that it does not.
TEST_F(LayoutTest, DataAfterTablesOfVaryingSizeIsRefusedOrFixed) {
    write_file("moved.cpy",
               "       01  M.\n           05  N PIC 9.\n"
               "           05  T PIC X OCCURS 4 DEPENDING ON N.\n           05  Z PIC X.\n");
    const Outcome refused = sxml({"layout", "moved.cpy"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_NE(refused.err.find("--odo sliding when a table"), std::string::npos) << refused.err;
    const Outcome fixed = sxml({"layout", "moved.cpy", "--odo", "fixed"});
    EXPECT_EQ(fixed.err, "");
    EXPECT_NE(fixed.out.find("Record length: 6 bytes"), std::string::npos) << fixed.out;
}

// Numbers with a point stored in them go both ways.
TEST_F(LayoutTest, StoredPointsAreReadAndWritten) {
    write_file("pointed.cpy", "       01  P.\n           05  A PIC S9(3).99.\n");
    write_file("p.dat", "001.5p012.34");
    EXPECT_EQ(sxml({"to-xml", "p.dat", "p.xml", "-l", "pointed.cpy"}).err, "");
    EXPECT_NE(read_file("p.xml").find("<a>-1.50</a>"), std::string::npos) << read_file("p.xml");
    EXPECT_EQ(sxml({"from-xml", "p.xml", "q.dat", "-l", "pointed.cpy"}).err, "");
    EXPECT_EQ(read_file("q.dat"), "001.5p012.34");
}

// A description file stands for its copybook.
TEST_F(LayoutTest, DescriptionFilesGiveTheSameDocument) {
    write_file("l.dat", "A40000037Ann                           20010101" +
                            std::string("\x00\x00\x00\x00\x12\x3D", 6) + "Y    ");
    const std::string copybook = EXAMPLES + "ledger.cpy";
    EXPECT_EQ(sxml({"compile", copybook, "-o", "ledger.xfd"}).err, "");
    const Outcome from_copybook = sxml({"to-xml", "l.dat", "-", "--layout", copybook});
    const Outcome from_description = sxml({"to-xml", "l.dat", "-", "--layout", "ledger.xfd"});
    EXPECT_EQ(from_description.err, "");
    EXPECT_NE(from_copybook.out.find("<opening_balance>-1.23</opening_balance>"), std::string::npos)
        << from_copybook.out;
    EXPECT_EQ(from_description.out, from_copybook.out);
    EXPECT_EQ(sxml({"layout", "ledger.xfd"}).out, sxml({"layout", copybook}).out);
    EXPECT_EQ(sxml({"compile", "ledger.xfd", "-o", "-"}).out, read_file("ledger.xfd"));

    write_file("broken.xfd", read_file("ledger.xfd").substr(0, 200));
    const Outcome broken = sxml({"layout", "broken.xfd"});
    EXPECT_EQ(broken.status, 1);
    EXPECT_NE(broken.err.find("broken.xfd"), std::string::npos);
}

TEST_F(LayoutTest, DeclarationsServeAsFileAndAsDocumentType) {
    write_file("p.cpy",
               "       01  P.\n           05  A PIC X.\n           05  B PIC 9 OCCURS 2.\n");
    const std::string declarations =
        "<!ELEMENT p_file (p)*>\r\n <!ELEMENT p (a, b*)>\r\n"
        "  <!ELEMENT a (#PCDATA)>\r\n  <!ELEMENT b (#PCDATA)>\r\n";
    EXPECT_EQ(sxml({"dtd", "p.cpy"}).out, declarations);
    EXPECT_EQ(sxml({"dtd", "p.cpy", "--doctype"}).out,
              "<!DOCTYPE p_file [\r\n" + declarations + "]>\r\n");
    const std::string schema = sxml({"schema", "p.cpy", "--name", "pairs"}).out;
    EXPECT_EQ(schema.find("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<xs:schema "), 0U);
    EXPECT_NE(schema.find("<xs:element name=\"pairs\">"), std::string::npos);
    EXPECT_NE(schema.find("on 2026/11/18\r\n"), std::string::npos) << schema;
}

}  // namespace
