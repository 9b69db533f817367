// COBOL programs with plain files and with XML documents.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "tests/gnucobol/cobol_test.h"

namespace {

namespace fs = std::filesystem;

// The adapter is made for the runtime that it was built with.
TEST_F(CobolTest, OtherRuntimesAreRefused) {
    compile_for_xml(PROGRAMS + "statuses.cbl", "statuses");
    write_file("other.c", "const char *libcob_version (void) { return \"9.8.7\"; }\n");
    ASSERT_EQ(run({"cc", "-shared", "-fPIC", "-o", "other.so", "other.c"}).status, 0);
    set("LD_PRELOAD", "./other.so");
    const Outcome outcome = run_program({"./statuses", "missing.xml"});
    unsetenv("LD_PRELOAD");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_NE(outcome.err.find("the runtime here is 9.8.7; build it again"), std::string::npos)
        << outcome.err;
}

TEST_F(CobolTest, SamplesDisplayTheSameWithPlainFilesAndWithXml) {
    const std::vector<std::string> files = {"ORDERS", "CUSTOMERS", "CHANGES",
                                            "LEDGER", "UPDATED",   "JOURNAL"};
    set("SXML_PATH", SAMPLES);
    std::string plain;
    std::string xml;
    for (const std::string program :
         {"make_data", "order_report", "master_update", "convert_ledger"}) {
        const std::string source = SAMPLES + program + ".cbl";
        compile_plain(source, "plain");
        compile_for_xml(source, "xml");
        assign(files, ".dat");
        plain += "== " + program + "\n" + run_program({"./plain"}).out;
        assign(files, ".xml");
        const Outcome outcome = run_program({"./xml"});
        EXPECT_EQ(outcome.err, "") << program;
        xml += "== " + program + "\n" + outcome.out;
    }
    EXPECT_EQ(xml, read_file(SAMPLES + "expected.txt"));
    EXPECT_EQ(plain, xml);
    for (const std::string& file : files) EXPECT_EQ(well_formed(file + ".xml"), "") << file;

    // What COBOL wrote as XML becomes the records that it wrote plainly, and the other way round.
    const Outcome back =
        sxml({"from-xml", "CUSTOMERS.xml", "back.dat", "--layout", SAMPLES + "customers.cpy"});
    EXPECT_EQ(back.status, 0) << back.err;
    EXPECT_EQ(read_file("back.dat"), read_file("CUSTOMERS.dat"));
    const Outcome forth =
        sxml({"to-xml", "CHANGES.dat", "CHANGES.xml", "--layout", SAMPLES + "changes.cpy"});
    EXPECT_EQ(forth.status, 0) << forth.err;
    fs::remove("UPDATED.xml");
    compile_for_xml(SAMPLES + "master_update.cbl", "xml");
    EXPECT_NE(xml.find("== master_update\n" + run_program({"./xml"}).out), std::string::npos);
    EXPECT_TRUE(fs::exists("UPDATED.xml"));
}

TEST_F(CobolTest, StatementsOutOfOrderGiveTheStatusesOfPlainFiles) {
    const std::string plain = same_output("order", {"DATA", "MAYBE", "NOTHING"});
    EXPECT_NE(plain.find("read past end 46"), std::string::npos) << plain;
    EXPECT_NE(plain.find("declarative "), std::string::npos) << plain;
    EXPECT_NE(errors.find("sxml: DATA.xml: WRITE: file status 48: "), std::string::npos) << errors;
}

TEST_F(CobolTest, EveryStateOfAFileHasItsStatus) {
    const std::string head =
        "<?xml version=\"1.0\"?><data><data_record><number_of>7</number_of>"
        "<packed_number>-12</packed_number><text_of>seven</text_of>"
        "</data_record>";
    const std::string good = head + "<data_record><number_of>8</number_of></data_record></data>";
    write_file("good.xml", good);
    write_file("doubtful.xml", head +
                                   "<data_record><number_of>x</number_of></data_record>"
                                   "<data_record><number_of>123456</number_of></data_record>"
                                   "</data>");
    write_file("damaged.xml", head + "<data_record></wrong></data>");
    write_file("cut.xml", head + "<data_record><number_of>8");
    write_file("unended.xml", head + "\r\n");
    write_file("ended.xml",
               "<!DOCTYPE data [<!ELEMENT x (y)>]><!-- <a> --><data>\n</data >\n<!-- -->");
    write_file("text.xml", "no document");
    write_file("empty.xml", "");
    write_file("short.xml", good);
    write_file("short.cpy", "       01 R.\n           05 T PIC X(5).\n");
    fs::create_directory("folder.xml");
    fs::create_symlink("/dev/full", "full.xml");
    set("SXML_PATH", PROGRAMS);
    set("SXML_LAYOUT_short", "short.cpy");
    set("HERE", "folder.xml/..");
    set("dd_mapped", "good.xml");
    compile_for_xml(PROGRAMS + "statuses.cbl", "statuses");
    const Outcome outcome = run_program(
        {"./statuses", "good.xml", "doubtful.xml", "damaged.xml", "cut.xml", "unended.xml",
         "ended.xml", "text.xml", "empty.xml", "missing.xml", "folder.xml", "short.xml",
         "HERE/good.xml", "$HERE/text.xml", "$NOWHERE/text.xml", "mapped"});
    EXPECT_EQ(outcome.out, read_file(PROGRAMS + "statuses.txt"));
    EXPECT_EQ(outcome.err, read_file(PROGRAMS + "statuses.err"));
    EXPECT_EQ(read_file("good.xml"), good);
    EXPECT_EQ(read_file("short.xml"), good);
    // A limit on the size of files counts as a full disk.
    fs::remove("full.xml");
    const Outcome limited = run({"bash", "-c", "ulimit -f 16; exec ./statuses good.xml"});
    EXPECT_NE(limited.out.find("\n  write 34\n  close 34\n"), std::string::npos) << limited.out;
}

TEST_F(CobolTest, LengthsLayoutsAndSubprograms) {
    const std::string plain =
        same_output("lengths", {"TABLES", "KINDS", "VARIED", "PARTS", "LINES", "LAST"},
                    {PROGRAMS + "leave.cbl"});
    EXPECT_NE(plain.find("16 0003abcabcabcabc|\n03 -003\n13 Ltext     003\n"), std::string::npos);
    EXPECT_EQ(errors,
              "sxml: PARTS.xml: WRITE: file status 44: the record does not have a length that the "
              "file's records may have\n");
    // STOP RUN has ended the documents.
    for (const std::string file : {"TABLES.xml", "LAST.xml"}) EXPECT_EQ(well_formed(file), "");
    EXPECT_NE(read_file("LAST.xml").find("<last_text>last</last_text>"), std::string::npos);
}

TEST_F(CobolTest, JustifiedAndEditedFieldsKeepTheirBlanks) {
    const std::string plain = same_output("edited", {"LIST"});
    EXPECT_NE(plain.find("[      ab    12.50 12- 12- 12.5CR $12.50 DB  ab "), std::string::npos)
        << plain;
    EXPECT_EQ(errors, "");
    const std::string layout = PROGRAMS + "edited.cbl";
    const Outcome back = sxml({"from-xml", "LIST.xml", "back.dat", "--layout", layout});
    EXPECT_EQ(back.status, 0) << back.err;
    EXPECT_EQ(read_file("back.dat"), read_file("LIST.dat"));
    // A description file keeps the pictures.
    EXPECT_EQ(sxml({"compile", layout, "-o", "list.xfd"}).status, 0);
    fs::rename("list.xfd", "LIST.xfd");
    EXPECT_EQ(run_program({"./edited"}).out, plain);
}

TEST_F(CobolTest, SeveralProgramsInOneSource) {
    const std::string plain = same_output("units", {"FIGURES", "SHARED", "SORTED", "LEFT"});
    EXPECT_NE(plain.find("shared 00 from sharer"), std::string::npos) << plain;
    EXPECT_EQ(errors, "");
    for (const std::string file : {"FIGURES.xml", "SHARED.xml", "SORTED.xml", "LEFT.xml"}) {
        EXPECT_EQ(well_formed(file), "") << file;
    }
}

TEST_F(CobolTest, OtherFilesWorkAsWithoutTheHandler) {
    set("SXML_FILES", "*");
    set("COB_LS_VALIDATE",
        "no");  // or release 3.2 rejects the blanks of a record that was never filled
    const std::string plain = same_output("keyed", {"MASTER", "LIST"});
    EXPECT_NE(plain.find("read 00third"), std::string::npos) << plain;
    EXPECT_NE(plain.find("list 10"), std::string::npos) << plain;
    EXPECT_EQ(errors, "");
    EXPECT_EQ(well_formed("LIST.xml"), "");
}

// What a program says of one file, under settings of its user.
struct Place {
    const char* what;
    std::vector<std::pair<std::string, std::string>> settings;
    std::string name;      // given to the program
    std::string expected;  // status of the OPEN, and the first field when it succeeds
    std::string message;   // part of what is reported; empty: nothing is
};

TEST_F(CobolTest, FilesAndLayoutsAreFoundAsTheUserSays) {
    compile_for_xml(PROGRAMS + "statuses.cbl", "statuses");
    fs::create_directory("sub");
    const std::string document = "<x><data_record><number_of>5</number_of></data_record></x>";
    for (const char* name : {"sub/a.xml", "a.doc", "a.xml", "other.xml", "b-1.xml", "broken.xml"}) {
        write_file(name, document);
    }
    const std::string program = read_file(PROGRAMS + "statuses.cbl");
    fs::create_directory("layouts");
    write_file("layouts/statuses.cbl", program);
    write_file("layouts/other.cpy", "       01 DATA-RECORD.\n           05 OTHER PIC X(17).\n");
    write_file("layouts/broken.cpy", "       01 DATA-RECORD.\n           05 A PIC Q.\n");
    write_file("layouts/two.cbl", program);
    const std::vector<Place> places = {
        {"a pattern", {{"SXML_FILES", "*.txt:*.doc"}}, "a.doc", "00 0005", ""},
        {"a folder", {{"COB_FILE_PATH", "sub"}}, "a.xml", "00 0005", ""},
        {"no such folder", {{"COB_FILE_PATH", "none"}}, "a.xml", "35", "none/a.xml: OPEN INPUT"},
        {"any letter case", {{"dd_small", "A.XML"}}, "small", "35", "A.XML: OPEN INPUT"},
        {"a file and an FD", {{"SXML_LAYOUT_b_1", "two.cbl:DATA-FILE"}}, "b-1.xml", "00 0005", ""},
        {"another FD",
         {{"SXML_LAYOUT_b_1", "two.cbl:MAYBE"}},
         "b-1.xml",
         "39",
         "the program's records have 17 bytes, those of layouts/two.cbl have 9"},
        {"no such FD", {{"SXML_LAYOUT_a", "two.cbl:NONE"}}, "a.xml", "30", "NONE"},
        {"no such layout", {{"SXML_LAYOUT_a", "none.cpy"}}, "a.xml", "30", "none.cpy"},
        {"a copybook of its name", {}, "other.xml", "00 0005", ""},
        {"a copybook that is named",
         {{"SXML_LAYOUT_other", "other.cpy"}},
         "other.xml",
         "00",
         "no field has the name of element number_of"},
        {"a mistake in it",
         {{"SXML_LAYOUT_broken", "broken.cpy"}},
         "broken.xml",
         "30",
         "broken.cpy:2:"},
        {"fetching is forbidden",
         {{"SXML_NETWORK", "no"}},
         "http://127.0.0.1:1/a.xml",
         "37",
         "SXML_NETWORK"},
        {"a module that is none", {{"SXML_MODULE", "a.xml"}}, "a.xml", "30", "a.xml: "},
    };
    for (const Place& place : places) {
        setenv("SXML_PATH", "layouts", 1);
        for (const auto& [name, value] : place.settings) setenv(name.c_str(), value.c_str(), 1);
        const Outcome outcome = run_program({"./statuses", place.name});
        for (const auto& [name, value] : place.settings) unsetenv(name.c_str());
        const std::string start = place.name + ": open " + place.expected.substr(0, 2) + "\n" +
                                  (place.expected.size() > 2       ? "  read " + place.expected
                                   : place.expected.front() == '0' ? std::string("  read 04")
                                                                   : std::string("i-o"));
        EXPECT_TRUE(outcome.out.starts_with(start)) << place.what << "\n" << outcome.out;
        const std::string first = outcome.err.substr(0, outcome.err.find('\n'));
        if (place.message.empty()) {
            EXPECT_NE(first.find("READ: file status 46"), std::string::npos) << place.what << first;
        } else {
            EXPECT_NE(first.find(place.message), std::string::npos) << place.what << "\n" << first;
        }
    }
    unsetenv("SXML_PATH");
}

TEST_F(CobolTest, WhatTheDocumentDoesNotHaveIsBlank) {
    write_file("LEDGER.xml",
               "<ledger>"
               "<account><record_kind>A</record_kind><account_no>12</account_no>"
               "<account_title>Kept &#228; &amp; b</account_title></account>"
               "<booking><booking_side>C</booking_side><amount>-1.5</amount>"
               "<record_kind>B</record_kind><purpose>first one</purpose></booking>"
               "<booking><record_kind>B</record_kind></booking>"
               "<account><record_kind>A</record_kind></account>"
               "<booking><record_kind>B</record_kind><purpose>a purpose that is too long for it"
               "</purpose><amount>+7</amount><booking_side>D</booking_side></booking>"
               "</ledger>");
    set("SXML_PATH", SAMPLES);
    assign({"LEDGER", "JOURNAL"}, ".xml");
    compile_for_xml(SAMPLES + "convert_ledger.cbl", "convert");
    const Outcome outcome = run_program({"./convert"});
    EXPECT_EQ(
        outcome.err,
        "sxml: LEDGER.xml: READ: record 5, field purpose: \"a purpose that is too long for it\" "
        "is cut to 20 bytes\n");
    EXPECT_EQ(outcome.out,
              "account 0012 Kept \xC3\xA4 & b \n"
              "account 0000             \n"
              "[Kept \xC3\xA4 & b credit-0000150first one           ]\n"
              "[Kept \xC3\xA4 & b credit+0000000                    ]\n"
              "[            debit +0000700a purpose that is to]\n"
              "status 10\n");

    // The compiler's refusal is the command's.
    write_file("wrong.cbl", "       IDENTIFICATION DIVISION.\n       NONSENSE.\n");
    const Outcome refused = sxml({"cob", "wrong.cbl"});
    EXPECT_NE(refused.status, 0);
    EXPECT_NE(refused.err.find("wrong.cbl:2: error"), std::string::npos) << refused.err;
    EXPECT_EQ(sxml({"cob"}).status, 2);
}

}  // namespace
