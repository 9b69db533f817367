// The layouts that `sxml cob` binds into programs.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/gnucobol/cobol_test.h"

namespace {

const std::string COPYBOOKS = PROGRAMS + "copybooks";

// A program in fixed format with these FDs, working storage and statements.
std::string program(const std::string& name, const std::string& files, const std::string& storage,
                    const std::string& statements) {
    std::string selects;
    for (std::size_t at = files.find("FD "); at != std::string::npos;
         at = files.find("FD ", at + 1)) {
        const std::size_t begin = files.find_first_not_of(' ', at + 2);
        const std::string fd = files.substr(begin, files.find_first_of(" .", begin) - begin);
        selects += "           SELECT " + fd + " ASSIGN TO \"" + fd + "\" FILE STATUS S.\n";
    }
    return "       IDENTIFICATION DIVISION.\n       PROGRAM-ID. " + name +
           ".\n       ENVIRONMENT DIVISION.\n       INPUT-OUTPUT SECTION.\n       FILE-CONTROL.\n" +
           selects + "       DATA DIVISION.\n       FILE SECTION.\n" + files +
           "       WORKING-STORAGE SECTION.\n       01  S PIC XX.\n" + storage +
           "       PROCEDURE DIVISION.\n" + statements;
}

// Whatever the options make of the record, its document is the same.
TEST_F(CobolTest, LayoutsAreThoseOfTheOptions) {
    fs::copy(PROGRAMS + "numbers.cbl", "numbers.cbl");
    std::string first;
    for (const std::string option :
         {"-std=default", "-std=ibm", "-std=mvs", "-std=mf", "-fsign=EBCDIC", "-fbinary-size=1--8",
          "-fbinary-size=2-4-8", "-fbinary-byteorder=native", "-fno-binary-truncate", "-debug"}) {
        compile_for_xml("numbers.cbl", "numbers", {option, "-I", COPYBOOKS});
        assign({"FIGURES"}, ".xml");
        fs::remove("FIGURES.xml");
        EXPECT_EQ(run_program({"./numbers", "write"}).err, "") << option;
        std::string document = read_file("FIGURES.xml");
        document = document.substr(document.find("<figures>"));
        if (first.empty()) first = document;
        EXPECT_EQ(document, first) << option;
        const std::string read = run_program({"./numbers", "read"}).out;
        EXPECT_NE(read.find("12345"), std::string::npos) << option << read;
        EXPECT_TRUE(read.starts_with("00 -") && read.ends_with(" end\n")) << option << read;
    }
    EXPECT_NE(first.find("<big>-12345</big>\r\n  <fig_small>12</fig_small>\r\n  "
                         "<fig_signed>-123</fig_signed>\r\n  <fig_native>-123</fig_native>\r\n  "
                         "<fig_packed>-1.50</fig_packed>"),
              std::string::npos)
        << first;
    // Neither the source nor its copybooks matter to the program.
    write_file("numbers.cbl", "nothing");
    EXPECT_EQ(run_program({"./numbers", "write"}).err, "");
}

// What is compiled is what is described: -D chooses among items, a configuration file of one's own
// says how numbers lie.
TEST_F(CobolTest, LayoutsAreThoseOfDefinesAndConfigurations) {
    write_file("p.cbl", program("P",
                                "       FD  OUTF.\n       01  R.\n"
                                "       >>IF WIDE IS DEFINED\n           05 A PIC X(9).\n"
                                "       >>ELSE\n           05 A PIC X(3).\n       >>END-IF\n"
                                "           05 N PIC S9(3) COMP.\n           05 M PIC 9(5) COMP.\n",
                                "",
                                "           OPEN OUTPUT OUTF. MOVE \"abcdefghi\" TO A.\n"
                                "           MOVE -2 TO N. MOVE 70000 TO M.\n"
                                "           WRITE R. CLOSE OUTF.\n"
                                "           DISPLAY LENGTH OF R. STOP RUN.\n"));
    write_file("own.conf",
               "include \"default.conf\"\nbinary-size: 1--8\nbinary-byteorder: native\n"
               "binary-truncate: no\n");
    assign({"OUTF"}, ".xml");
    const std::vector<std::pair<std::vector<std::string>, std::vector<std::string>>> table = {
        {{}, {"9\n", "<a>abc</a>", "<n>-2</n>"}},
        {{"-D", "WIDE"}, {"15\n", "<a>abcdefghi</a>", "<n>-2</n>"}},
        {{"-DWIDE"}, {"15\n", "<a>abcdefghi</a>", "<n>-2</n>"}},
        {{"-conf=own.conf"}, {"8\n", "<a>abc</a>", "<n>-2</n>", "<m>70000</m>"}}};
    for (const auto& [words, expected] : table) {
        compile_for_xml("p.cbl", "p", words);
        const Outcome outcome = run_program({"./p"});
        EXPECT_EQ(outcome.err, "") << testing::PrintToString(words);
        const std::string seen = outcome.out + read_file("OUTF.xml");
        for (const std::string& part : expected) {
            EXPECT_NE(seen.find(part), std::string::npos) << testing::PrintToString(words) << seen;
        }
    }
}

struct Refusal {
    const char* what;
    std::string files;
    std::string storage;
    std::string statements;
    std::vector<std::string> words;
    std::string message;  // part of it; empty: compiles
};

TEST_F(CobolTest, FilesThatCannotBeDescribedAreRefused) {
    const std::string filler = "       FD  OUTF.\n       01  R.\n           05 FILLER PIC X(9).\n";
    const std::string items =
        "       01  A. 02 A1 PIC X(4). 02 A2 PIC 9(5).\n"
        "       01  B. 02 B1 PIC X(9).\n";
    const std::string from_a = "           WRITE R FROM A.\n";
    const std::vector<Refusal> refusals = {
        {"one item", filler, items, from_a, {}, ""},
        {"two items", filler, items, from_a + "           WRITE R FROM B.\n", {}, "A, B"},
        {"no item", filler, "", "           WRITE R.\n", {}, "FD OUTF cannot be described"},
        {"left out", filler, "", "           WRITE R.\n", {"--no-xml", "outf"}, ""},
        {"a name that is none", filler, items, from_a, {"--name", "OUTF=a b"}, "a b"},
        {"no such FD", filler, items, from_a, {"--name", "NONE=a"}, "no FD NONE"}};
    for (const Refusal& refusal : refusals) {
        write_file("p.cbl", program("P", refusal.files, refusal.storage, refusal.statements));
        std::vector<std::string> words = {"cob", "p.cbl"};
        words.insert(words.end(), refusal.words.begin(), refusal.words.end());
        const Outcome outcome = sxml(words);
        EXPECT_EQ(outcome.status == 0, refusal.message.empty()) << refusal.what << outcome.err;
        EXPECT_NE(outcome.err.find(refusal.message), std::string::npos)
            << refusal.what << outcome.err;
    }
}

TEST_F(CobolTest, NothingStaysOfACompilationThatASignalEnds) {
    fs::create_directory("private");
    set("TMPDIR", fs::current_path().string() + "/private");
    const std::string cob = SXML_BUILD_DIR "/bin/sxml cob " + PROGRAMS + "units.cbl -o units";
    const Outcome outcome = run({"bash", "-c",
                                 "for s in 0.03 0.06 0.1 0.15 0.2 0.3; do timeout -s TERM $s " +
                                     cob + " 2>/dev/null; done; ls -d private/sxml.??????"});
    EXPECT_EQ(outcome.out, "");
}

// Modules, objects, several sources, another driver: the layouts come along.
TEST_F(CobolTest, LayoutsAreBoundInHoweverProgramsAreMade) {
    const std::string record = "       01  R.\n           05 A PIC X(3).\n";
    write_file("main.cbl",
               program("MAINP", "       FD  OUTF.\n" + record, "",
                       "           OPEN OUTPUT OUTF. MOVE \"abc\" TO A. WRITE R. CLOSE OUTF.\n"
                       "           CALL \"SUBP\".\n           STOP RUN.\n"));
    write_file("subp.cbl",
               program("SUBP", "       FD  OUTG.\n" + record, "",
                       "           OPEN OUTPUT OUTG. MOVE \"def\" TO A. WRITE R. CLOSE OUTG.\n"
                       "           GOBACK.\n"));
    const std::string sxml_command = SXML_BUILD_DIR "/bin/sxml";
    const std::string cob = sxml_command + " cob ";
    write_file("Makefile", "prog: main.cbl subp.cbl\n\t$(COBC) -x -o prog main.cbl subp.cbl\n");
    for (const std::string& commands :
         {cob + "-x -o prog main.cbl subp.cbl",
          cob + "-x -o prog main.cbl && " + cob + "-m -o SUBP.so subp.cbl",
          cob + "-x -o prog main.cbl && " + cob + "-b -o SUBP.so subp.cbl",
          cob + "-c subp.cbl && " + cob + "-x -o prog main.cbl subp.o",
          "make -s COBC='" + sxml_command + " cob'",
          "COB_CC='" + sxml_command + " cob-cc' cobc -x -o prog main.cbl subp.cbl",
          "cp main.cbl 'the main.cbl'; COB_CC='" + sxml_command +
              " cob-cc' cobc -x -o prog 'the main.cbl' subp.cbl"}) {
        assign({"OUTF", "OUTG"}, ".xml");
        const Outcome outcome = run({"bash", "-c", commands + " && ./prog"});
        EXPECT_EQ(outcome.status, 0) << commands << outcome.err;
        EXPECT_NE(read_file("OUTF.xml").find("<a>abc</a>"), std::string::npos) << commands;
        EXPECT_NE(read_file("OUTG.xml").find("<a>def</a>"), std::string::npos) << commands;
        for (const std::string file :
             {"prog", "SUBP.so", "subp.so", "subp.o", "OUTF.xml", "OUTG.xml"}) {
            fs::remove(file);
        }
    }
}

// Each 01 has its own element, also where their items have the same names.
TEST_F(CobolTest, EachRecordIsWrittenAndReadAsItself) {
    const std::string files =
        "       FD  OUTF.\n"
        "       01  HEAD.\n           05 KIND PIC X.\n           05 TITLE PIC X(5).\n"
        "       01  DETAIL-REC.\n           05 KIND PIC X.\n           05 FILLER PIC X(5).\n"
        "           05 N PIC 9.\n           05 T PIC 99 OCCURS 1 TO 3 DEPENDING ON N.\n"
        "       01  TRAILER PIC 9(4) BINARY.\n";
    write_file("p.cbl",
               program("P", files, "",
                       "           OPEN OUTPUT OUTF.\n"
                       "           MOVE \"Htitle\" TO HEAD. WRITE HEAD.\n"
                       "           MOVE SPACES TO DETAIL-REC. MOVE \"D\" TO KIND OF DETAIL-REC.\n"
                       "           MOVE 2 TO N. MOVE 11 TO T (1). MOVE 22 TO T (2).\n"
                       "           WRITE DETAIL-REC. MOVE 77 TO TRAILER.\n           WRITE "
                       "TRAILER. CLOSE OUTF.\n"
                       "           OPEN INPUT OUTF. READ OUTF. DISPLAY HEAD.\n"
                       "           READ OUTF. DISPLAY KIND OF DETAIL-REC N T (1) T (2).\n"
                       "           READ OUTF. DISPLAY TRAILER. CLOSE OUTF. STOP RUN.\n"));
    compile_for_xml("p.cbl", "p");
    assign({"OUTF"}, ".xml");
    const Outcome outcome = run_program({"./p"});
    EXPECT_EQ(outcome.out, "Htitle\nD21122\n0077\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(well_formed("OUTF.xml"), "");
    const std::string document = read_file("OUTF.xml");
    EXPECT_NE(document.find("<head>\r\n  <kind>H</kind>"), std::string::npos) << document;
    EXPECT_NE(document.find("<t>22</t>\r\n </detail_rec>"), std::string::npos) << document;
    EXPECT_NE(document.find(">77</trailer_data>"), std::string::npos) << document;
}

// Of two records that both vary in length, only their contents can tell which is written.
TEST_F(CobolTest, NoRecordIsWrittenAsAnother) {
    const auto record = [](const std::string& when, const std::string& name) {
        return when + "       01  " + name +
               ".\n           05 KIND PIC X.\n           05 N PIC 9.\n" +
               "           05 T PIC X OCCURS 1 TO 3 DEPENDING ON N OF " + name + ".\n";
    };
    const std::string statements =
        "           OPEN OUTPUT OUTF. MOVE \"B2xy\" TO B-REC.\n"
        "           WRITE B-REC. DISPLAY S. CLOSE OUTF.\n";
    write_file("p.cbl",
               program("P", "       FD  OUTF.\n" + record("", "A-REC") + record("", "B-REC"), "",
                       statements));
    assign({"OUTF"}, ".xml");
    compile_for_xml("p.cbl", "p");
    const Outcome untold = run_program({"./p"});
    EXPECT_EQ(untold.out, "30\n");
    EXPECT_NE(untold.err.find("no layout can be chosen for the record"), std::string::npos)
        << untold.err;
    EXPECT_EQ(read_file("OUTF.xml").find("_rec>"), std::string::npos);
    write_file("p.cbl", program("P",
                                "       FD  OUTF.\n" +
                                    record("      *> sxml: when KIND OF A-REC = \"A\"\n", "A-REC") +
                                    record("      *> sxml: when KIND OF B-REC = \"B\"\n", "B-REC"),
                                "", statements));
    compile_for_xml("p.cbl", "p");
    EXPECT_EQ(run_program({"./p"}).out, "00\n");
    EXPECT_NE(read_file("OUTF.xml").find("<b_rec>"), std::string::npos);
}

TEST_F(CobolTest, BytesThatTheDocumentDoesNotHaveAreTold) {
    write_file("p.cbl", program("P",
                                "       FD  OUTF.\n       01  R.\n           05 A PIC X.\n"
                                "           05 FILLER PIC X(3).\n",
                                "",
                                "           OPEN OUTPUT OUTF. MOVE \"abcd\" TO R.\n"
                                "           PERFORM 3 TIMES WRITE R DISPLAY S END-PERFORM.\n"
                                "           CLOSE OUTF.\n"));
    compile_for_xml("p.cbl", "p");
    assign({"OUTF"}, ".xml");
    const Outcome told = run_program({"./p"});
    EXPECT_EQ(told.out, "00\n00\n00\n");
    EXPECT_EQ(told.err.find("sxml: warning: OUTF.xml: byte 2 of the record is not blank"), 0U);
    EXPECT_EQ(std::count(told.err.begin(), told.err.end(), '\n'), 1);
    set("SXML_STRICT", "yes");
    EXPECT_EQ(run_program({"./p"}).out, "30\n30\n30\n");
}

}  // namespace
