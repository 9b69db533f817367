// COBOL programs with plain files and with XML documents.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "tests/command/command_run.h"

namespace {

namespace fs = std::filesystem;

const std::string PROGRAMS = SXML_SOURCE_DIR "/tests/gnucobol/";
const std::string SAMPLES = SXML_SOURCE_DIR "/gnucobol/samples/";

class CobolTest : public CommandTest {
  protected:
    void TearDown() override {
        for (const std::string& name : variables_) unsetenv(name.c_str());
        CommandTest::TearDown();
    }

    // Sets an environment variable until the test ends.
    void set(const std::string& name, const std::string& value) {
        setenv(name.c_str(), value.c_str(), 1);
        variables_.push_back(name);
    }

    static void compile_for_xml(const std::string& source, const std::string& program,
                                std::vector<std::string> more = {}) {
        std::vector<std::string> words = {"cob", source, "-o", program, "-I", SAMPLES};
        words.insert(words.end(), more.begin(), more.end());
        const Outcome outcome = sxml(words);
        ASSERT_EQ(outcome.status, 0) << outcome.err;
    }

    static void compile_plain(const std::string& source, const std::string& program,
                              std::vector<std::string> more = {}) {
        std::vector<std::string> words = {"cobc", "-x", source, "-o", program, "-I", SAMPLES};
        words.insert(words.end(), more.begin(), more.end());
        const Outcome outcome = run(words);
        ASSERT_EQ(outcome.status, 0) << outcome.err;
    }

    static Outcome run_program(const std::vector<std::string>& words) {
        std::vector<std::string> all;
#ifdef SXML_PRELOAD
        all = {"env", "LD_PRELOAD=" SXML_PRELOAD, "ASAN_OPTIONS=detect_leaks=0"};
#endif
        all.insert(all.end(), words.begin(), words.end());
        return run(all);
    }

    // The files of these names are NAME.suffix from now on.
    void assign(const std::vector<std::string>& names, const std::string& suffix) {
        for (const std::string& name : names) set("DD_" + name, name + suffix);
    }

    static std::string well_formed(const std::string& document) {
        const Outcome outcome = run({"xmllint", "--noout", "--valid", document});
        return outcome.err;
    }

  private:
    std::vector<std::string> variables_;
};

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
    compile_for_xml(PROGRAMS + "order.cbl", "order");
    set("SXML_PATH", PROGRAMS);
    set("DD_DATA", "data.dat");
    const std::string plain = run_program({"./order"}).out;
    EXPECT_NE(plain.find("read past end 46"), std::string::npos) << plain;
    set("DD_DATA", "data.xml");
    const Outcome xml = run_program({"./order"});
    EXPECT_EQ(xml.out, plain);
    EXPECT_NE(xml.err.find("sxml: data.xml: WRITE: file status 48: "), std::string::npos);
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
}

TEST_F(CobolTest, LengthsLayoutsAndSubprograms) {
    const std::vector<std::string> files = {"TABLES", "KINDS", "LAST"};
    const std::vector<std::string> subprogram = {PROGRAMS + "leave.cbl"};
    compile_plain(PROGRAMS + "lengths.cbl", "plain", subprogram);
    compile_for_xml(PROGRAMS + "lengths.cbl", "xml", subprogram);
    set("SXML_PATH", PROGRAMS);
    assign(files, ".dat");
    const std::string plain = run_program({"./plain"}).out;
    EXPECT_NE(plain.find("16 0003abcabcabcabc|\n03 -003\n13 Ltext     003\n"), std::string::npos);
    assign(files, ".xml");
    const Outcome xml = run_program({"./xml"});
    EXPECT_EQ(xml.out, plain);
    EXPECT_EQ(xml.err, "");
    // STOP RUN has ended the documents.
    for (const std::string file : {"TABLES.xml", "LAST.xml"}) EXPECT_EQ(well_formed(file), "");
    EXPECT_NE(read_file("LAST.xml").find("<last_text>last</last_text>"), std::string::npos);
}

}  // namespace
