// Each subcommand with failing calls.
#include "tests/faults/sweep.h"

namespace {

const std::string SXML = SXML_BUILD_DIR "/bin/sxml";
const std::string SAMPLES = SXML_SOURCE_DIR "/examples/";

struct Case {
    const char* name;
    std::vector<std::string> words;  // after the name of the command
    std::string input = {};
    std::vector<std::pair<std::string, std::string>> settings = {};
    bool makes_two_files = false;  // which cannot be renamed in one step
};

void PrintTo(const Case& tried, std::ostream* out) {
    *out << tried.name;
}

constexpr const char* DOCUMENT =
    "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<!-- top -->\n"
    "<!DOCTYPE list [<!ELEMENT list (row*)><!ELEMENT row (#PCDATA)>"
    "<!ATTLIST row k CDATA 'v'><!ENTITY r '<row>e</row>'>]><?app data?>\n"
    "<list><!-- c --><row name='\xE9'>one</row><row>two &amp; more</row>&r;</list>";

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
        {"dump", {"dump", "ebcdic.dat", "-l", copybook, "--encoding", "cp037"}},
        {"compile", {"compile", copybook, "-o", "out.xfd"}},
        {"dtd", {"dtd", copybook}},
        {"schema", {"schema", copybook}},
        {"rewrite", {"rewrite", "list.xml", "out.xml"}},
        {"tree", {"tree", "list.xml"}},
    };
}

class Faults : public CommandTest, public testing::WithParamInterface<Case> {
  protected:
    void SetUp() override {
        CommandTest::SetUp();
        for (const char* name : {"custfile.cpy", "custfile.dat", "ledger.cpy"}) {
            write_file(name, read_file(SAMPLES + name));
        }
        write_file("list.xml", DOCUMENT);
        write_file("settings",
                   "SXML_IGNORE_EMPTY_DATA = yes\nSXML_STYLESHEET_TYPE = text/css\n"
                   "SXML_STYLESHEET_HREF = style.css\n");
        ASSERT_EQ(sxml({"compile", "custfile.cpy", "-o", "custfile.xfd"}).status, 0);
        ASSERT_EQ(sxml({"to-xml", "custfile.dat", "custfile.xml", "-l", "custfile.cpy"}).status, 0);
        ASSERT_EQ(sxml({"from-xml", "custfile.xml", "ebcdic.dat", "-l", "custfile.cpy",
                        "--encoding", "cp037"})
                      .status,
                  0);
        for (const char* name : {"out.xml", "out.dat", "out.xfd"}) write_file(name, "old\n");
        const Case& tried = GetParam();
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

TEST_P(Faults, OfFiles) {
    std::vector<Fault> faults = IO_FAULTS;
    if (GetParam().makes_two_files) {
        std::erase_if(faults,
                      [](const Fault& fault) { return fault.kind == std::string("rename"); });
    }
    sweep(program_, faults);
}

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

INSTANTIATE_TEST_SUITE_P(Command, Faults, testing::ValuesIn(cases()),
                         [](const auto& tried) { return std::string(tried.param.name); });

}  // namespace
