// Command lines: help, version, and what is refused before any work is done.

#include <sstream>

#include "tests/command/command_run.h"

namespace {

const std::string COPYBOOK = "       01  LINE-RECORD.\n           05  WORD PIC X(4).\n";

struct UsageCase {
    const char* name;
    std::vector<std::string> words;
    int status;
    std::vector<std::string> said;                      // all in standard output or standard error
    std::pair<const char*, const char*> variable = {};  // of the environment
};

void PrintTo(const UsageCase& one, std::ostream* out) {
    *out << one.name;
}

class UsageTest : public CommandTest, public testing::WithParamInterface<UsageCase> {};

// Source lines of a copybook, and lists, are indented below their message.
void expect_name_of_program(const std::string& err) {
    std::istringstream lines(err);
    for (std::string line; std::getline(lines, line);) {
        EXPECT_TRUE(line.starts_with("sxml: ") || line.starts_with("  "))
            << line << "\nin: " << err;
    }
}

TEST_P(UsageTest, EndsWithStatusAndMessage) {
    const UsageCase& expected = GetParam();
    write_file("line.cpy", COPYBOOK);
    write_file("bad.cpy", "       01  R.\n           05  F PIC Q(4).\n");
    write_file("line.xfd", "{}");
    write_file("words", "abcdefgh");
    write_file("two.cbl",
               "       FILE SECTION.\n       FD  A.\n       01  R PIC X.\n       FD  B.\n"
               "       01  S PIC X.\n");
    write_file("long.cpy",
               "       01  R.\n" + std::string(50, ' ') + "05  FIELD-NAME   PIC X(4).\n");
    write_file("cut.cpy", "       01  R.\n           05  F PIC X(4)" + std::string(44, ' ') +
                              "VALUE 'x'.\n      * a comment\n           05  G PIC X.\n");
    write_file("marks.cpy", "       01  R.\n           05  F PIC X(4)." + std::string(47, ' ') +
                                "CHANGE-1987\n");
    write_file("late.cpy", "       01  R.\n       * the word\n           05  F PIC X.\n");
    write_file("binary.cpy", "       01  R.\n           05  B PIC 9(4) COMP.\n");
    write_file("ebcdic.cpy", run({"iconv", "-t", "cp037"}, COPYBOOK).out);
    write_file("rdw", std::string("\0\x08\0\0aaaa\0\x06\0\0aa\0\x08\0\0aaaa", 22));
    const std::vector<std::string> before = files();
    const auto& [variable, value] = expected.variable;
    if (variable != nullptr) setenv(variable, value, 1);
    const Outcome outcome = sxml(expected.words);
    if (variable != nullptr) unsetenv(variable);
    EXPECT_EQ(outcome.status, expected.status) << outcome.err;
    expect_name_of_program(outcome.err);
    const std::string said = outcome.out + outcome.err;
    for (const std::string& text : expected.said) {
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
    {"version_in_short", {"-V"}, 0, {"sxml 1."}},
    {"version_of_a_subcommand", {"tree", "--version"}, 0, {"sxml 1."}},
    {"help_by_name", {"help"}, 0, {"to-xml", "tree"}},
    {"help_of_a_subcommand",
     {"help", "tree"},
     0,
     {"Usage: sxml tree", "web\n                          address (required)"}},
    {"required_options_look_so", {"dtd", "--help"}, 0, {"repeated) (required)"}},
    {"help_of_nothing",
     {"help", "tre"},
     2,
     {"sxml: there is no subcommand tre; did you mean tree?"}},
    {"nothing", {}, 2, {"subcommand is required; `sxml --help` lists the subcommands"}},
    {"unknown_subcommand",
     {"to-json"},
     2,
     {"sxml: there is no subcommand to-json; `sxml --help` lists them"}},
    {"no_layout",
     {"to-xml", "words", "words.xml"},
     2,
     {"sxml: to-xml: --layout is required; `sxml to-xml --help` shows the options"}},
    {"misspelt_option",
     {"to-xml", "words", "words.xml", "--layuot", "line.cpy"},
     2,
     {"sxml: to-xml: there is no option --layuot; did you mean --layout?; `sxml to-xml --help`"}},
    {"misspelt_version", {"--versoin"}, 2, {"sxml: there is no option --versoin; did you mean"}},
    {"number_too_large",
     to_xml({"--count", "99999999999999999999"}),
     2,
     {"sxml: to-xml: --count: 99999999999999999999 is not a whole number from 1 to"}},
    {"number_below_zero",
     to_xml({"--rejects", "bad", "--max-rejects", "-1"}),
     2,
     {"sxml: to-xml: --max-rejects: -1 is not a whole number from 0 to"}},
    {"record_zero", to_xml({"--from-record", "0"}), 2, {"--from-record: 0 is not a whole number"}},
    {"half_a_byte", to_xml({"--skip", "1.5"}), 2, {"--skip: 1.5 is not a whole number"}},
    {"limit_for_nothing", to_xml({"--max-rejects", "1"}), 2, {"--max-rejects requires --rejects"}},
    {"empty_option",
     to_xml({"--report", ""}),
     2,
     {"sxml: to-xml: --report: the value is empty (a variable of the shell that is not set?); `"}},
    {"empty_file",
     {"to-xml", "words", "", "--layout", "line.cpy"},
     2,
     {"sxml: to-xml: XML: the value is empty"}},
    {"one_word_too_many", {"tree", "words", "more"}, 2, {"sxml: tree: more is one word too many"}},
    {"encoding_by_setting",
     to_xml({"--set", "SXML_ENCODING=UTF-16"}),
     2,
     {"sxml: SXML_ENCODING UTF-16"}},
    {"fetch_limit", to_xml({"--set", "X=1"}), 2, {"\n  SXML_FETCH_LIMIT"}},
    {"schema_without_a_name",
     to_xml({"--schema", "-"}),
     2,
     {"sxml: --schema -: the document names the file of its schema"}},
    {"schema_in_a_stream",
     to_xml({"--schema", "/dev/null"}),
     2,
     {"sxml: --schema /dev/null: the document names the file of its schema"}},
    {"options_of_copybooks_for_a_description",
     {"layout", "line.xfd", "--machine", "native", "--fd", "F", "--no-truncate"},
     1,
     {"sxml: line.xfd is a description file, whose layout is settled; --fd, --machine, "
      "--no-truncate: for making one"}},
    {"several_fds",
     {"layout", "two.cbl"},
     1,
     {"choose one",
      "sxml: two.cbl: there is no usable record layout; choose the FD or record with "
      "--fd NAME"}},
    {"copybook_in_ebcdic",
     {"layout", "ebcdic.cpy"},
     1,
     {"sxml: ebcdic.cpy: the text is in EBCDIC"}},
    {"copybook_beyond_column_72",
     {"layout", "long.cpy"},
     1,
     {"sxml: note: long.cpy:2:73: in fixed format text ends in column 72"}},
    {"period_beyond_column_72",
     {"layout", "cut.cpy"},
     1,
     {"sxml: note: cut.cpy:2:73: in fixed format text ends in column 72", "--format variable"}},
    {"marks_beyond_column_80",
     {"layout", "marks.cpy"},
     1,
     {"sxml: note: marks.cpy:2:74: columns beyond 72 are read", "--format fixed"}},
    {"comment_in_column_8",
     {"layout", "late.cpy"},
     1,
     {"sxml: note: late.cpy:2:",
      ": the * of a comment must be in column 7; this one is in column 8"}},
    {"records_with_length_headers",
     {"to-xml", "rdw", "words.xml", "--layout", "line.cpy"},
     1,
     {"sxml: rdw: record 1, byte offset 0: the file has headers with lengths in it"}},
    {"no_settings_file",
     {"layout", "line.cpy"},
     1,
     {"sxml: SXML_CONFIG: none: No such file or directory"},
     {"SXML_CONFIG", "none"}},
    {"date_that_is_none",
     {"to-xml", "words", "/dev/null", "--layout", "line.cpy"},
     0,
     {"sxml: SOURCE_DATE_EPOCH=yesterday in the environment is not a number of seconds since 1970"},
     {"SOURCE_DATE_EPOCH", "yesterday"}},
    {"one_file", {"to-xml", "words", "--layout", "line.cpy"}, 2, {"XML is required"}},
    {"unknown_format", to_xml({"--format", "loose"}), 2, {"--format", "loose"}},
    {"condition_without_one",
     to_xml({"--when", "LINE-RECORD: "}),
     2,
     {"--when LINE-RECORD: : name the record or item and its condition, as in"}},
    {"name_without_condition", to_xml({"--when", "LINE-RECORD"}), 2, {"--when LINE-RECORD: name"}},
    {"binary_field_in_lines",
     {"to-xml", "words", "words.xml", "--layout", "binary.cpy", "--line", "--strict"},
     1,
     {"--line: field b is binary; a byte in it that looks like a line end would cut its record; "
      "use --record-format rdw, or fixed"}},
    {"unknown_setting",
     to_xml({"--set", "SXML_COLOUR=red"}),
     2,
     {"--set SXML_COLOUR: there is no such setting", "\n  SXML_CREATE_STYLE", "\n  SXML_SCHEMA_DOC",
      "\n  4GL_COLUMN_CASE"}},
    {"setting_without_value", to_xml({"--set", "SXML_ENCODING"}), 2, {"NAME=VALUE"}},
    {"setting_of_wrong_kind", to_xml({"--set", "SXML_CREATE_STYLE=RNG"}), 2, {"DTD", "SCHEMA"}},
    {"schema_without_name", to_xml({"--set", "SXML_CREATE_STYLE=SCHEMA"}), 2, {"--schema FILE"}},
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
     {"sxml: bad.cpy:2:", "05  F PIC Q(4).", "^", "sxml: bad.cpy: "}},
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

class MessagesTest : public CommandTest {};

TEST_F(MessagesTest, BeginWithTheNameOfTheProgramWhateverFails) {
    write_file("good.cpy", COPYBOOK);
    write_file("bad.cpy", "       01  R.\n           05  F PIC Q(4).\n");
    write_file("warned.cpy", "       01  R.\n           05  F PIC X SPARKLING.\n");
    write_file("words", "abcdefg");
    write_file("broken.xml", "<a><b></a>");
    const std::vector<std::vector<std::string>> runs = {
        {"layout", "none.cpy"},
        {"layout", "bad.cpy"},
        {"compile", "bad.cpy", "-o", "x.xfd"},
        {"compile", "warned.cpy", "-o", "none/x.xfd"},
        {"dtd", "bad.cpy"},
        {"schema", "bad.cpy"},
        {"to-xml", "words", "-", "-l", "warned.cpy", "-l", "none.cpy"},
        {"to-xml", "words", "/dev/full", "-l", "good.cpy"},
        {"from-xml", "broken.xml", "x.dat", "-l", "good.cpy"},
        {"from-xml", "broken.xml", "x.dat", "-l", "bad.cpy"},
        {"check", "none", "-l", "good.cpy"},
        {"check", "broken.xml", "-l", "bad.cpy"},
        {"dump", "words", "-l", "good.cpy"},
        {"dump", "words", "-l", "bad.cpy"},
        {"copybook", "broken.xml"},
        {"rewrite", "broken.xml", "-"},
        {"tree", "broken.xml"},
        {"split", "broken.xml", "--parts", "2"},
        {"join", "broken.xml", "none.xml", "-o", "x.xml"},
        {"help", "none"},
        {"none"},
    };
    for (const std::vector<std::string>& words : runs) {
        SCOPED_TRACE(words.front() + " " + words.back());
        const Outcome outcome = sxml(words);
        EXPECT_NE(outcome.status, 0);
        EXPECT_NE(outcome.err, "");
        expect_name_of_program(outcome.err);
    }
}

INSTANTIATE_TEST_SUITE_P(CommandLines, UsageTest, testing::ValuesIn(CASES),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
