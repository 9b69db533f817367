// Each subcommand with failing calls.
#include <filesystem>

#include "tests/faults/sweep.h"

namespace {

namespace fs = std::filesystem;

const std::string SXML = SXML_BUILD_DIR "/bin/sxml";
const std::string SAMPLES = SXML_SOURCE_DIR "/examples/";
const std::string COPY_PROGRAM = SXML_SOURCE_DIR "/tests/faults/copy.cbl";

struct Case {
    const char* name;
    std::vector<std::string> words;  // after the name of the command
    std::string input = {};
    std::vector<std::pair<std::string, std::string>> settings = {};
    bool makes_two_files = false;  // which cannot be renamed in one step
    // The programs that it starts would take over the filter of system calls, and not its handler.
    bool starts_programs = false;
};

void PrintTo(const Case& tried, std::ostream* out) {
    *out << tried.name;
}

constexpr const char* DOCUMENT =
    "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<!-- top -->\n"
    "<!DOCTYPE list [<!ELEMENT list (row*)><!ELEMENT row (#PCDATA)>"
    "<!ATTLIST row k CDATA 'v'><!ENTITY r '<row>e</row>'>]><?app data?>\n"
    "<list><!-- c --><row name='\xE9'>one</row><row>two &amp; more</row>&r;</list>";

void remove_kind(std::vector<Fault>& faults, const std::string& kind) {
    std::erase_if(faults, [&](const Fault& fault) { return fault.kind == kind; });
}

std::vector<Case> cases() {
    const std::string copybook = "custfile.cpy";
    return {
        {"to_xml", {"to-xml", "custfile.dat", "out.xml", "-l", copybook}},
        {"to_xml_with_schema",
         {"to-xml", "custfile.dat", "out.xml", "-l", copybook},
         "",
         {{"SXML_CREATE_STYLE", "SCHEMA"},
          {"SXML_SCHEMA_NAME", "out.xsd"},
          {"SXML_IGNORE_EMPTY_DATA", "1"}},
         true},
        {"to_xml_ebcdic",
         {"to-xml", "ebcdic.dat", "out.xml", "-l", copybook, "--encoding", "cp037"},
         "",
         {{"SXML_CONFIG", "settings"}}},
        {"to_xml_in_streams", {"to-xml", "-", "-", "-l", "custfile.xfd"}, "(records)"},
        {"from_xml", {"from-xml", "custfile.xml", "out.dat", "-l", copybook}},
        {"layout", {"layout", "ledger.cpy"}},
        {"layout_of_copied_parts", {"layout", "outer.cpy"}},
        {"layout_of_any_name", {"layout", "custfile.json"}},
        {"dump", {"dump", "ebcdic.dat", "-l", copybook, "--encoding", "cp037"}},
        {"compile", {"compile", copybook, "-o", "out.xfd"}},
        {"dtd", {"dtd", copybook}},
        {"schema", {"schema", copybook}},
        {"rewrite", {"rewrite", "list.xml", "out.xml"}},
        {"tree", {"tree", "list.xml"}},
        {"split", {"split", "custfile.xml", "--records", "1", "-o", "part"}, "", {}, true},
        {"join", {"join", "custfile.xml", "custfile.xml", "-o", "out.xml"}},
        {"check_records", {"check", "custfile.dat", "-l", copybook}},
        {"check_document", {"check", "custfile.xml", "-l", copybook, "--json"}},
        {"copybook", {"copybook", "custfile.xml", "-o", "out.cpy"}},
        {"copybook_of_schema", {"copybook", "custfile.xsd", "custfile.xml", "-o", "out.cpy"}},
        {"to_xml_by_two", {"to-xml", "custfile.dat", "out.xml", "-l", copybook, "--jobs", "2"}},
        {"from_xml_by_two", {"from-xml", "custfile.xml", "out.dat", "-l", copybook, "--jobs", "2"}},
#ifdef SXML_HAS_COBOL
        {"cob", {"cob", "-fsyntax-only", "copy.cbl"}, "", {}, false, true},
        {"cob_cc", {"cob-cc", "-c", "copy.c"}, "", {{"SXML_CC", "true"}}, false, true},
#endif
    };
}

std::vector<Case> cases_without_programs() {
    std::vector<Case> all = cases();
    std::erase_if(all, [](const Case& each) { return each.starts_programs; });
    return all;
}

class Faults : public CommandTest, public testing::WithParamInterface<Case> {
  protected:
    void SetUp() override {
        CommandTest::SetUp();
        for (const char* name : {"custfile.cpy", "custfile.dat", "ledger.cpy"}) {
            write_file(name, read_file(SAMPLES + name));
        }
        write_file("list.xml", DOCUMENT);
        // Named in another letter case, so that the folder is listed.
        write_file("outer.cpy", "       01 ROW.\n           COPY inner.\n");
        write_file("INNER.CPY", "           05 A PIC X(5).\n");
        write_file("settings",
                   "SXML_IGNORE_EMPTY_DATA = yes\nSXML_STYLESHEET_TYPE = text/css\n"
                   "SXML_STYLESHEET_HREF = style.css\n");
        ASSERT_EQ(sxml({"compile", "custfile.cpy", "-o", "custfile.xfd"}).status, 0);
        write_file("custfile.json", read_file("custfile.xfd"));
        ASSERT_EQ(sxml({"to-xml", "custfile.dat", "custfile.xml", "-l", "custfile.cpy"}).status, 0);
        ASSERT_EQ(sxml({"from-xml", "custfile.xml", "ebcdic.dat", "-l", "custfile.cpy",
                        "--encoding", "cp037"})
                      .status,
                  0);
        write_file("custfile.xsd", sxml({"schema", "custfile.cpy"}).out);
        for (const char* name : {"out.xml", "out.dat", "out.xfd", "out.cpy"}) {
            write_file(name, "old\n");
        }
        const Case& tried = GetParam();
        if (tried.words[0].starts_with("cob")) {
            write_file("copy.cbl", read_file(COPY_PROGRAM));
            ASSERT_EQ(run({"cobc", "-x", "-C", "copy.cbl"}).status, 0);
        }
        program_.words = tried.words;
        program_.words.insert(program_.words.begin(), SXML);
        program_.input = tried.input == "(records)" ? read_file("custfile.dat") : tried.input;
        program_.settings = tried.settings;
    }

    Program program_;
};

TEST_P(Faults, OfMemory) {
    sweep(program_, MEMORY_FAULTS);
}

class FileFaults : public Faults {};

TEST_P(FileFaults, OfFiles) {
    std::vector<Fault> faults = IO_FAULTS;
    if (GetParam().makes_two_files) remove_kind(faults, "rename");
    sweep(program_, faults);
}

#ifdef SXML_HAS_COBOL
// A program's files through the adapter.
TEST_F(CommandTest, FaultsOfCobolPrograms) {
    ASSERT_EQ(sxml({"cob", COPY_PROGRAM, "-o", "copy"}).status, 0);
    ASSERT_EQ(run({"./copy", "out.xml"}).status, 0);
    fs::copy("out.xml", "in.xml");
    fs::rename("out.xml", "more.xml");
    // Two ways in which links lead to a document.
    fs::create_directory("store");
    write_file("store/out.xml", "old\n");
    fs::create_directory_symlink("store", "way");
    fs::create_symlink("way/out.xml", "out.xml");
    for (const char* name : {"in.xml", "out.xml", "more.xml"}) {
        const Program program = {{"./copy", name}, "", {}};
        sweep(program, MEMORY_FAULTS);
        std::vector<Fault> faults = IO_FAULTS;
        // The runtime does not tell that DISPLAY has failed.
        if (name == std::string("in.xml")) remove_kind(faults, "write");
        sweep(program, faults);
    }
}
#endif

// What cannot be stored must not take the target's name: the data reaches the disk first.
TEST_F(CommandTest, DataIsStoredBeforeItTakesTheName) {
    for (const char* name : {"custfile.cpy", "custfile.dat"}) {
        write_file(name, read_file(SAMPLES + name));
    }
    ASSERT_EQ(sxml({"to-xml", "custfile.dat", "in.xml", "-l", "custfile.cpy"}).status, 0);
    const struct {
        const char* target;
        std::vector<std::string> words;
    } cases[] = {
        {"out.xml", {"to-xml", "custfile.dat", "out.xml", "-l", "custfile.cpy"}},
        {"out.xsd", {"to-xml", "custfile.dat", "-", "-l", "custfile.cpy", "--schema", "out.xsd"}},
        {"out.dat", {"from-xml", "in.xml", "out.dat", "-l", "custfile.cpy"}},
        {"bad.xml", {"from-xml", "in.xml", "-", "-l", "custfile.cpy", "--rejects", "bad.xml"}},
        {"out.json", {"from-xml", "in.xml", "-", "-l", "custfile.cpy", "--report", "out.json"}},
        {"out.xfd", {"compile", "custfile.cpy", "-o", "out.xfd"}},
        {"out.xml", {"rewrite", "in.xml", "out.xml"}},
        {"out.cpy", {"copybook", "in.xml", "-o", "out.cpy"}},
    };
    for (const auto& c : cases) {
        write_file(c.target, "old\n");
        setenv("SXML_FAULT", "sync 1+ 5", 1);
        setenv("LD_PRELOAD", SXML_BUILD_DIR "/tests/failing_calls.so", 1);
        const Outcome outcome = sxml(c.words);
        unsetenv("LD_PRELOAD");
        unsetenv("SXML_FAULT");
        EXPECT_EQ(outcome.status, 1) << c.words[0] << " " << c.target;
        EXPECT_NE(outcome.err.find(std::string(c.target) + ": Input/output error"),
                  std::string::npos)
            << outcome.err;
        EXPECT_EQ(read_file(c.target), "old\n") << c.words[0];
    }
}

std::string name_of(const testing::TestParamInfo<Case>& tried) {
    return tried.param.name;
}

INSTANTIATE_TEST_SUITE_P(Command, Faults, testing::ValuesIn(cases()), name_of);
INSTANTIATE_TEST_SUITE_P(Command, FileFaults, testing::ValuesIn(cases_without_programs()), name_of);

}  // namespace
