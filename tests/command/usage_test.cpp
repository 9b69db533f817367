// Command lines: help, version, and what is refused before any work is done.

#include "tests/command/command_run.h"

namespace {

const std::string COPYBOOK = "       01  LINE-RECORD.\n           05  WORD PIC X(4).\n";

struct UsageCase {
    const char* name;
    std::vector<std::string> words;
    int status;
    std::vector<std::string> said;  // all in standard error, or, with status 0, in standard output
};

void PrintTo(const UsageCase& one, std::ostream* out) {
    *out << one.name;
}

class UsageTest : public CommandTest, public testing::WithParamInterface<UsageCase> {};

TEST_P(UsageTest, EndsWithStatusAndMessage) {
    const UsageCase& expected = GetParam();
    write_file("line.cpy", COPYBOOK);
    write_file("bad.cpy", "       01  R.\n           05  F PIC Q(4).\n");
    write_file("words", "abcdefgh");
    const std::vector<std::string> before = files();
    const Outcome outcome = sxml(expected.words);
    EXPECT_EQ(outcome.status, expected.status) << outcome.err;
    for (const std::string& text : expected.said) {
        const std::string& said = expected.status == 0 ? outcome.out : outcome.err;
        EXPECT_NE(said.find(text), std::string::npos) << "missing: " << text << "\nin: " << said;
    }
    EXPECT_EQ(files(), before);
}

std::vector<std::string> to_xml(const std::vector<std::string>& more) {
    std::vector<std::string> words = {"to-xml", "words", "words.xml", "--layout", "line.cpy"};
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

const std::vector<UsageCase> CASES = {
    {"version", {"--version"}, 0, {"sxml 1."}},
    {"help", {"--help"}, 0, {"to-xml", "layout", "compile", "dtd", "schema"}},
    {"to_xml_help", {"to-xml", "--help"}, 0, {"Example:\n  sxml to-xml orders.dat orders.xml"}},
    {"layout_help", {"layout", "--help"}, 0, {"Example:\n  sxml layout orders.cpy"}},
    {"compile_help", {"compile", "--help"}, 0, {"Example:\n  sxml compile orders.cpy"}},
    {"dtd_help", {"dtd", "--help"}, 0, {"Example:\n  sxml dtd orders.cpy"}},
    {"schema_help", {"schema", "--help"}, 0, {"Example:\n  sxml schema orders.cpy"}},
    {"nothing", {}, 2, {"subcommand is required"}},
    {"unknown_subcommand", {"to-json"}, 2, {"to-json"}},
    {"no_layout", {"to-xml", "words", "words.xml"}, 2, {"--layout is required"}},
    {"one_file", {"to-xml", "words", "--layout", "line.cpy"}, 2, {"XML is required"}},
    {"unknown_format", to_xml({"--format", "loose"}), 2, {"--format", "loose"}},
    {"unknown_setting",
     to_xml({"--set", "SXML_COLOUR=red"}),
     2,
     {"--set SXML_COLOUR: there is no such setting", "\n  SXML_CREATE_STYLE", "\n  SXML_SCHEMA_DOC",
      "\n  4GL_COLUMN_CASE"}},
    {"setting_without_value", to_xml({"--set", "SXML_ENCODING"}), 2, {"NAME=VALUE"}},
    {"setting_of_wrong_kind", to_xml({"--set", "SXML_CREATE_STYLE=RNG"}), 2, {"DTD", "SCHEMA"}},
    {"schema_without_name",
     to_xml({"--set", "SXML_CREATE_STYLE=SCHEMA"}),
     2,
     {"--set SXML_SCHEMA_NAME=FILE"}},
    {"schema_over_document",
     to_xml({"--set", "SXML_CREATE_STYLE=SCHEMA", "--set", "SXML_SCHEMA_NAME=./words.xml"}),
     2,
     {"one file"}},
    {"unknown_encoding", to_xml({"--encoding", "klingon"}), 2, {"klingon", "cp037", "utf-8"}},
    {"wide_encoding", to_xml({"--encoding", "utf-16"}), 2, {"--encoding utf-16"}},
    {"lines_in_ebcdic", to_xml({"--line", "--encoding", "cp037"}), 2, {"--line", "cp037"}},
    {"records_over_themselves",
     {"to-xml", "words", "./words", "--layout", "line.cpy"},
     2,
     {"one file"}},
    {"no_records",
     {"to-xml", "none", "words.xml", "--layout", "line.cpy"},
     1,
     {"sxml: none: No such file or directory"}},
    {"no_copybook", {"to-xml", "words", "words.xml", "--layout", "none.cpy"}, 1, {"none.cpy"}},
    {"bad_copybook",
     {"to-xml", "words", "words.xml", "--layout", "bad.cpy"},
     1,
     {"bad.cpy:2:", "error: ", "05  F PIC Q(4).", "^", "sxml: bad.cpy: "}},
    {"no_folder",
     {"to-xml", "words", "none/words.xml", "--layout", "line.cpy"},
     1,
     {"none", "No such file or directory"}},
    {"folder_as_document",
     {"to-xml", "words", "/tmp", "--layout", "line.cpy"},
     1,
     {"/tmp: Is a directory"}},
    {"folder_as_records",
     {"to-xml", "/tmp", "words.xml", "--layout", "line.cpy"},
     1,
     {"/tmp: Is a directory"}},
};

INSTANTIATE_TEST_SUITE_P(CommandLines, UsageTest, testing::ValuesIn(CASES),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
