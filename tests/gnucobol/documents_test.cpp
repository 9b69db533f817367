// A document is complete or absent, and has one writer.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>

#include "tests/gnucobol/cobol_test.h"

namespace {

class EndingTest : public CobolTest {
  protected:
    void SetUp() override {
        CobolTest::SetUp();
        compile_for_xml(PROGRAMS + "ending.cbl", "ending");
        run_program({"./ending", "close", "old"});
        old_ = read_file("result.xml");
        ASSERT_NE(old_.find(">old<"), std::string::npos);
    }

    static bool has_left_over() { return fs::exists(".result.xml.part"); }

    std::string old_;  // the document that is there before
};

struct End {
    std::string command;
    bool is_written;
    std::string message;
};

TEST_F(EndingTest, DocumentsAreCompleteWhenTheProgramEndsAsItMeansTo) {
    const std::string unchanged = "is as it was before";
    const std::vector<End> ends = {
        {"./ending close new", true, ""},
        {"./ending stop new", true, ""},
        {"./ending goback new", true, ""},
        {"./ending abort new", false, unchanged},
        {"./ending crash new", false, unchanged},
        {"./ending wait new & sleep 0.3; kill -TERM $!; wait $!", false, unchanged},
        {"./ending wait new & sleep 0.3; kill -HUP $!; wait $!", false, unchanged},
        {"./ending wait new & sleep 0.3; kill -ABRT $!; wait $!", false, unchanged},
        {"./ending wait new & sleep 0.3; kill -ALRM $!; wait $!", false, unchanged},
        {"./ending wait new & sleep 0.3; kill -USR1 $!; wait $!", false, unchanged},
        {"./ending wait new & sleep 0.3; kill -XCPU $!; wait $!", false, unchanged},
        {"./ending wait new & sleep 0.3; kill -SYS $!; wait $!", false, unchanged},
        {"./ending wait new & sleep 0.3; kill -TRAP $!; wait $!", false, unchanged},
        {"./ending wait new & sleep 0.3; kill -RTMIN $!; wait $!", false, unchanged},
        {"./ending wait new & sleep 0.3; kill -RTMAX $!; wait $!", false, unchanged},
        {"./ending fork new", true, ""},
        {"SXML_VERBOSE= ./ending close new", true, ""},
        {"timeout -s INT 0.3 ./ending wait new", false, unchanged},
        {"./ending wait new & sleep 0.3; kill -KILL $!; wait $! 2>/dev/null", false, ""}};
    for (const End& end : ends) {
        write_file("result.xml", old_);
        const Outcome outcome = run_program({"bash", "-c", end.command});
        const std::string now = read_file("result.xml");
        EXPECT_EQ(now != old_, end.is_written) << end.command;
        EXPECT_EQ(now.find(">new<") != std::string::npos, end.is_written) << end.command;
        EXPECT_EQ(well_formed("result.xml"), "") << end.command;
        const bool is_killed = end.command.find("KILL") != std::string::npos;
        EXPECT_EQ(has_left_over(), is_killed) << end.command;
        if (end.is_written) {
            EXPECT_EQ(outcome.err, "") << end.command;
        } else {
            EXPECT_NE(outcome.err.find(end.message), std::string::npos) << outcome.err;
        }
    }
    // A document that cannot be stored fails the program, which no status tells of it.
    write_file("result.xml", old_);
    const Outcome full =
        run({"bash", "-c", "(ulimit -f 0; ./ending stop new 2>&1) | cat; exit ${PIPESTATUS[0]}"});
    EXPECT_EQ(full.status, 1);
    EXPECT_NE(full.out.find("CLOSE: file status 34: File too large"), std::string::npos)
        << full.out;
    EXPECT_EQ(read_file("result.xml"), old_);
    // The file of a killed writer is taken over.
    EXPECT_EQ(run_program({"./ending", "close", "new"}).err, "");
    EXPECT_FALSE(has_left_over());
}

TEST_F(EndingTest, ADocumentHasOneWriter) {
    EXPECT_EQ(run_program({"./ending", "twice", "new"}).out,
              "open 00\nwrite 00\nagain 61\nread 61\nclose 00\n");
    const Outcome outcome =
        run({"bash", "-c", "./ending wait new & sleep 0.3; ./ending close other; kill $!; wait"});
    EXPECT_NE(outcome.out.find("open 61\n"), std::string::npos) << outcome.out;
    EXPECT_NE(outcome.err.find("OPEN OUTPUT: file status 61: another program"), std::string::npos);
    EXPECT_NE(read_file("result.xml").find(">new<"), std::string::npos);
}

// Links lead to the document; its permissions stay; a folder that admits no new file does not
// matter.
TEST_F(EndingTest, TheDocumentStaysWhereAndWhatItIs) {
    fs::create_directory("store");
    fs::rename("result.xml", "store/kept.xml");
    fs::create_symlink("store/kept.xml", "result.xml");
    fs::permissions("store/kept.xml", fs::perms{0640});
    run_program({"./ending", "close", "new"});
    EXPECT_TRUE(fs::is_symlink("result.xml"));
    EXPECT_NE(read_file("store/kept.xml").find(">new<"), std::string::npos);
    EXPECT_EQ(fs::status("store/kept.xml").permissions(), fs::perms{0640});
    // Shared memory has files, too.
    const std::string shared = "/dev/shm/" + fs::current_path().filename().string() + ".xml";
    set("DD_result_xml", shared);
    for (const std::string text : {"first", "second"}) {
        EXPECT_EQ(run_program({"./ending", "close", text}).err, "");
        EXPECT_NE(read_file(shared).find(">" + text + "<"), std::string::npos);
    }
    fs::remove(shared);
    unsetenv("DD_result_xml");
    // The program begins with so many descriptors, and has none left for the document.
    int refusals = 0;
    for (int limit = 4; limit < 40; ++limit) {
        const std::string command = "ulimit -n " + std::to_string(limit) + "; ./ending close new";
        const Outcome outcome = run({"bash", "-c", command});
        if (outcome.out.find("open 30") == std::string::npos) continue;
        ++refusals;
        EXPECT_NE(outcome.err.find("Too many open files"), std::string::npos) << outcome.err;
    }
    EXPECT_GT(refusals, 0);
    fs::remove("result.xml");
    ASSERT_EQ(run({"mkfifo", "result.xml"}).status, 0);
    const Outcome piped =
        run({"bash", "-c", "cat result.xml & ./ending close piped >/dev/null; wait"});
    EXPECT_NE(piped.out.find(">piped<"), std::string::npos) << piped.out << piped.err;
}

// As root, too, the permissions of files are to count.
std::string with_permissions(const std::string& command) {
    return geteuid() != 0 ? command : "setpriv --bounding-set=-dac_override " + command;
}

TEST_F(EndingTest, AFolderNeedNotAdmitNewFiles) {
    const std::string program = fs::current_path().string() + "/ending";
    fs::create_directory("closed");
    fs::rename("result.xml", "closed/result.xml");
    fs::current_path("closed");
    const auto ours = [&](const std::string& words) {
        return run_program({"bash", "-c", with_permissions(program + " " + words)});
    };
    fs::permissions(".", fs::perms{0555});
    EXPECT_EQ(ours("close new").err, "");
    EXPECT_NE(read_file("result.xml").find(">new<"), std::string::npos);
    EXPECT_EQ(ours("extend added").err, "");
    const std::string whole = read_file("result.xml");
    EXPECT_LT(whole.find(">new<"), whole.find(">added<")) << whole;
    EXPECT_EQ(well_formed("result.xml"), "");
    ours("abort other");
    EXPECT_EQ(read_file("result.xml"), whole);
    // Two writers, and one of a user who may make files here.
    const Outcome two = run({"bash", "-c",
                             with_permissions(program + " wait other & sleep 0.3; ") +
                                 with_permissions(program + " close third; ") + "chmod 755 .; " +
                                 program + " close fourth; kill $!; wait $!"});
    EXPECT_EQ(two.out,
              "open 00\nwrite 00\nopen 61\nwrite 48\nclose 42\n"
              "open 61\nwrite 48\nclose 42\n");
    EXPECT_EQ(read_file("result.xml"), whole);
    // A file that another user has begun is neither taken over nor ignored.
    write_file(".result.xml.part", "");
    fs::permissions(".result.xml.part", fs::perms{0});
    for (const bool is_document_there : {true, false}) {
        if (!is_document_there) fs::rename("result.xml", "kept.xml");
        const Outcome refused = ours("close other");
        EXPECT_TRUE(refused.out.starts_with("open 61\n")) << refused.out;
        EXPECT_NE(refused.err.find(".result.xml.part is there and belongs to another user"),
                  std::string::npos)
            << refused.err;
        EXPECT_EQ(read_file(is_document_there ? "result.xml" : "kept.xml"), whole);
    }
    EXPECT_FALSE(fs::exists("result.xml"));
    fs::current_path("..");
}

// Of two programs that add to a document at a time, each either adds its record or is refused.
TEST_F(EndingTest, NoRecordIsLostBetweenTwoThatAdd) {
    const Outcome outcome =
        run({"bash", "-c",
             "add() { for ((i = 0; i < 20; ++i)); do\n"
             "  until ./ending extend x 2>/dev/null | grep -q 'close 00'; do sleep 0.01; done\n"
             "done; }\n"
             "add & add; wait\n"
             "grep -c '<result_text>x' result.xml"});
    EXPECT_EQ(outcome.out, "40\n");
    EXPECT_EQ(well_formed("result.xml"), "");
}

// How many rounds: SXML_SIGNALS, 40 unless set.
TEST_F(EndingTest, SignalsLeaveTheOldDocumentOrTheNewOne) {
    const char* const rounds = std::getenv("SXML_SIGNALS");
    const Outcome outcome =
        run({"bash", "-c",
             "for ((i = 0; i < " + std::string(rounds != nullptr ? rounds : "40") +
                 "; ++i)); do\n"
                 "  ./ending often round$i >/dev/null 2>&1 &\n"
                 "  sleep 0.0$((RANDOM % 60 + 20)); kill -TERM $!; wait $! 2>/dev/null\n"
                 "  xmllint --noout --valid result.xml || echo broken\n"
                 "  n=$(grep -c '<result_text>' result.xml); [[ $n == 1 || $n == 20 ]] || echo $n\n"
                 "  [ ! -e .result.xml.part ] || echo left\n"
                 "done"});
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "");
}

TEST_F(EndingTest, RecordsAreAddedAsIfWrittenAtOnce) {
    fs::remove("result.xml");
    EXPECT_EQ(run_program({"./ending", "extend", "one"}).out, "extend 35\nwrite 48\nclose 42\n");
    set("SOURCE_DATE_EPOCH", "1000000000");
    run_program({"./ending", "again", "same"});
    const std::string at_once = read_file("result.xml");
    run_program({"./ending", "close", "same"});
    run_program({"./ending", "extend", "same"});
    EXPECT_EQ(read_file("result.xml"), at_once);
    run_program({"./ending", "close", "one"});
    set("SOURCE_DATE_EPOCH", "1700000000");
    EXPECT_EQ(run_program({"./ending", "extend", "two"}).err, "");
    const std::string added = read_file("result.xml");
    EXPECT_EQ(well_formed("result.xml"), "");
    const std::string one =
        " <result_record>\r\n  <result_text>one</result_text>\r\n "
        "</result_record>\r\n";
    const std::string both = one +
                             " <result_record>\r\n  <result_text>two</result_text>\r\n "
                             "</result_record>\r\n</result>";
    EXPECT_NE(added.find("<result>\r\n" + both), std::string::npos) << added;
    for (const std::string other :
         {"<result/>", "<result>\r\n</result>\r\n", "<result><result_record>"}) {
        write_file("result.xml", other);
        const Outcome refused = run_program({"./ending", "extend", "three"});
        const bool is_damaged =
            other.find("</") == std::string::npos && other.find("/>") == std::string::npos;
        EXPECT_TRUE(refused.out.starts_with(is_damaged ? "extend 30" : "extend 39")) << refused.out;
        EXPECT_EQ(read_file("result.xml"), other);
        EXPECT_FALSE(has_left_over());
    }
}

TEST_F(CobolTest, SortsOfADamagedDocumentGiveNothing) {
    write_file("sorter.cbl",
               "       IDENTIFICATION DIVISION.\n       PROGRAM-ID. SORTER.\n"
               "       ENVIRONMENT DIVISION.\n       INPUT-OUTPUT SECTION.\n       FILE-CONTROL.\n"
               "           SELECT SRC ASSIGN TO \"in.xml\".\n"
               "           SELECT SRC-2 ASSIGN TO \"other.xml\".\n"
               "           SELECT DST ASSIGN TO \"DST\".\n           SELECT W ASSIGN TO \"w\".\n"
               "       DATA DIVISION.\n       FILE SECTION.\n"
               "       FD  SRC.\n       01  SR.\n           05 SK PIC 9(2).\n"
               "       FD  SRC-2.\n       01  R.\n           05 OK PIC 9(2).\n"
               "       FD  DST.\n       01  DR.\n           05 DK PIC 9(2).\n"
               "       SD  W.\n       01  WR.\n           05 WK PIC 9(2).\n"
               "       WORKING-STORAGE SECTION.\n       01  HOW PIC X(5).\n"
               "       PROCEDURE DIVISION.\n"
               "           ACCEPT HOW FROM ARGUMENT-VALUE.\n"
               "           IF HOW = \"merge\"\n"
               "               MERGE W ON ASCENDING KEY WK USING SRC-2 SRC GIVING DST\n"
               "           ELSE\n"
               "               SORT W ON ASCENDING KEY WK USING SRC GIVING DST.\n"
               "           DISPLAY SORT-RETURN.\n");
    compile_for_xml("sorter.cbl", "sorter");
    const std::string records = "<s><sr><sk>2</sk></sr><sr><sk>1</sk></sr>";
    write_file("in.xml", records + "</s>");
    set("DD_DST", "out.xml");
    EXPECT_EQ(run_program({"./sorter"}).out, "+000000000\n");
    const std::string sorted = read_file("out.xml");
    EXPECT_LT(sorted.find("<dk>1<"), sorted.find("<dk>2<")) << sorted;
    write_file("other.xml", "<s><r><ok>3</ok></r></s>");
    write_file("in.xml", "<s><sr><sk>1</sk></sr><sr><sk>4</sk></sr></s>");
    EXPECT_EQ(run_program({"./sorter", "merge"}).out, "+000000000\n");
    const std::string merged = read_file("out.xml");
    EXPECT_LT(merged.find("<dk>1<"), merged.find("<dk>3<")) << merged;
    EXPECT_LT(merged.find("<dk>3<"), merged.find("<dk>4<")) << merged;
    write_file("in.xml", records);
    for (const std::string how : {"sort", "merge"}) {
        const Outcome damaged = run_program({"./sorter", how});
        EXPECT_EQ(damaged.out, "+000000016\n") << how;
        EXPECT_NE(damaged.err.find("in.xml: READ: file status 30"), std::string::npos)
            << damaged.err;
        EXPECT_EQ(read_file("out.xml"), merged) << how;
    }
    write_file("in.xml", records + "</s>");
    for (const std::string target : {"/dev/full", "full.xml"}) {
        if (target == "full.xml") fs::create_symlink("/dev/full", "full.xml");
        set("DD_DST", target);
        set("SXML_FILES", "*full");
        EXPECT_EQ(run_program({"./sorter"}).out, "+000000016\n") << target;
    }
}

// A document's data for a record, the status of the READ, and the messages.
struct Told {
    std::string record;
    std::string status;
    std::string message;  // empty: nothing
};

TEST_F(CobolTest, WhatIsNotInTheRecordIsTold) {
    compile_for_xml(PROGRAMS + "statuses.cbl", "statuses");
    const std::vector<Told> table = {
        {"<number_of>1</number_of>", "00", ""},
        {"", "00", ""},
        {"<number>1</number>", "04", "no field has the name of element number"},
        {"<number_of>1</number_of><number_of>2</number_of>", "04", "comes more often"},
        {"<text_of>abcdefghijk</text_of>", "04", "field text_of: \"abcdefghijk\" is cut to 10"},
        {"<number_of>x</number_of>", "04", "field number_of: \"x\" is not a number"},
        {"<a><b>deep</b></a>", "04", "element a/b"},
        {"<number_of unit='m'>1</number_of>", "00", "attributes of number_of"}};
    for (const Told& told : table) {
        write_file("told.xml", "<x><r>" + told.record + "</r></x>");
        const Outcome outcome = run_program({"./statuses", "told.xml"});
        EXPECT_NE(outcome.out.find("\n  read " + told.status + " "), std::string::npos)
            << told.record << outcome.out;
        const bool is_told = outcome.err.find("READ: record 1") != std::string::npos;
        EXPECT_EQ(is_told, !told.message.empty()) << outcome.err;
        EXPECT_NE(outcome.err.find(told.message), std::string::npos) << outcome.err;
    }
    std::string many = "<x>";
    for (int i = 0; i < 25; ++i) many += "<r><number>1</number></r>";
    write_file("told.xml", many + "</x>");
    const Outcome outcome = run_program({"./statuses", "told.xml"});
    EXPECT_NE(outcome.err.find("told.xml: 15 more messages"), std::string::npos) << outcome.err;
    EXPECT_EQ(outcome.err.find("READ: record 11:"), std::string::npos) << outcome.err;
}

// By the command as by the program.
TEST_F(CobolTest, NumbersAreReadAsTheyAreMeant) {
    write_file("meant.cbl",
               "       IDENTIFICATION DIVISION.\n       PROGRAM-ID. MEANT.\n"
               "       ENVIRONMENT DIVISION.\n       CONFIGURATION SECTION.\n"
               "       SPECIAL-NAMES. DECIMAL-POINT IS COMMA.\n"
               "       INPUT-OUTPUT SECTION.\n       FILE-CONTROL.\n"
               "           SELECT INF ASSIGN TO \"f.xml\" FILE STATUS S.\n"
               "       DATA DIVISION.\n       FILE SECTION.\n       FD  INF.\n       01  R.\n"
               "           05 DAY-OF PIC 9(8).\n           05 PRICE PIC 9(3)V99.\n"
               "       WORKING-STORAGE SECTION.\n       01  S PIC XX.\n"
               "       PROCEDURE DIVISION.\n           OPEN INPUT INF. READ INF.\n"
               "           PERFORM UNTIL S >= \"10\" DISPLAY S \" \" R READ INF END-PERFORM.\n"
               "           CLOSE INF. STOP RUN.\n");
    compile_for_xml("meant.cbl", "meant");
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"<day_of>2026-11-23</day_of><price>12,50</price>", "00 2026112301250"},
        {"<day_of>20261123</day_of><price>12.5</price>", "00 2026112301250"},
        {"<day_of>2026-13-01</day_of>", "04 0000000000000"},
        {"<price>1.234,5</price>", "04 0000000000000"},
        {"<price>2026-11-23</price>", "04 0000000000000"}};
    std::string document = "<f>";
    std::string expected;
    std::string records;
    for (const auto& [record, result] : rows) {
        document += "<r>" + record + "</r>";
        expected += result + "\n";
        records += result.substr(3);
    }
    write_file("f.xml", document + "</f>");
    EXPECT_EQ(run_program({"./meant"}).out, expected);
    const Outcome command = sxml({"from-xml", "f.xml", "f.dat", "--layout", "meant.cbl"});
    EXPECT_EQ(command.status, 0) << command.err;
    EXPECT_EQ(read_file("f.dat"), records);
}

// The runtime handles a print file as always; as a document it is refused.
TEST_F(CobolTest, ReportsAreNoDocuments) {
    write_file("rep.cbl",
               "       IDENTIFICATION DIVISION.\n       PROGRAM-ID. REP.\n"
               "       ENVIRONMENT DIVISION.\n       INPUT-OUTPUT SECTION.\n       FILE-CONTROL.\n"
               "           SELECT P ASSIGN TO \"P\" LINE SEQUENTIAL FILE STATUS S.\n"
               "       DATA DIVISION.\n       FILE SECTION.\n       FD  P REPORT IS R.\n"
               "       WORKING-STORAGE SECTION.\n       01  S PIC XX.\n"
               "       REPORT SECTION.\n       RD  R.\n"
               "       01  D TYPE DETAIL LINE PLUS 1.\n           05 COLUMN 1 VALUE \"x\".\n"
               "       PROCEDURE DIVISION.\n           OPEN OUTPUT P. DISPLAY S.\n"
               "           IF S = \"00\" INITIATE R GENERATE D TERMINATE R CLOSE P.\n");
    compile_for_xml("rep.cbl", "rep");
    assign({"P"}, ".txt");
    EXPECT_EQ(run_program({"./rep"}).out, "00\n");
    EXPECT_NE(read_file("P.txt").find('x'), std::string::npos);
    assign({"P"}, ".xml");
    const Outcome refused = run_program({"./rep"});
    EXPECT_EQ(refused.out, "37\n");
    EXPECT_NE(refused.err.find("Report Writer"), std::string::npos) << refused.err;
    EXPECT_FALSE(fs::exists("P.xml"));
}

}  // namespace
