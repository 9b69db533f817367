// Where documents go: files that appear when they are complete, pipes, full disks, interruptions.

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "tests/command/command_run.h"

namespace {

class OutputTest : public CommandTest {
  protected:
    void SetUp() override {
        CommandTest::SetUp();
        write_file("w.cpy",
                   "       01  ENTRY-LINE.\n           05  WORD PIC X(4).\n"
                   "           05  MARK PIC X(2).\n");
        write_file("w.dat", "aaaabb    cc      eeeeff");
        write_file("bad.dat", "aaaabb\x01   ff");
    }

    static Outcome convert(const std::string& records, const std::string& xml,
                           std::vector<std::string> more = {}, const std::string& input = "",
                           const std::string& output = "") {
        more.insert(more.begin(), {"to-xml", records, xml, "--layout", "w.cpy"});
        return sxml(more, input, output);
    }
};

TEST_F(OutputTest, StandardInputAndOutput) {
    EXPECT_EQ(convert("w.dat", "w.xml").err, "");
    const Outcome piped = convert("-", "-", {}, read_file("w.dat"));
    EXPECT_EQ(piped.err, "");
    EXPECT_EQ(piped.out, read_file("w.xml"));
    EXPECT_NE(convert("-", "-", {}, "aaaab")
                  .err.find("standard input: record 1, byte offset 0: the record is cut short"),
              std::string::npos);
}

// A pipe cannot be moved back in when an empty element is dropped.
TEST_F(OutputTest, EmptyElementsAreDroppedFromPipes) {
    const std::vector<std::string> drop = {"--set", "SXML_IGNORE_EMPTY_DATA=yes"};
    EXPECT_EQ(convert("w.dat", "w.xml", drop).err, "");
    const std::string document = read_file("w.xml");
    EXPECT_NE(document.find("<w>\r\n <entry_line>\r\n  <word>aaaa</word>\r\n  <mark>bb</mark>\r\n"
                            " </entry_line>\r\n <entry_line>\r\n  <mark>cc</mark>\r\n"
                            " </entry_line>\r\n <entry_line>\r\n  <word>eeee</word>\r\n"
                            "  <mark>ff</mark>\r\n </entry_line>\r\n</w>\r\n"),
              std::string::npos)
        << document;
    const Outcome piped = run({"sh", "-c",
                               "$0 to-xml w.dat - --layout w.cpy --set SXML_IGNORE_EMPTY_DATA=yes"
                               " | cat",
                               command_under_test()});
    EXPECT_EQ(piped.err, "");
    EXPECT_EQ(piped.out, document);
}

TEST_F(OutputTest, AFailureLeavesTheOldDocument) {
    write_file("w.xml", "old");
    EXPECT_EQ(convert("bad.dat", "w.xml").status, 1);
    EXPECT_EQ(read_file("w.xml"), "old");
    EXPECT_EQ(files(), (std::vector<std::string>{"bad.dat", "w.cpy", "w.dat", "w.xml"}));
    EXPECT_EQ(convert("w.dat", "w.xml").status, 0);
    EXPECT_EQ(files(), (std::vector<std::string>{"bad.dat", "w.cpy", "w.dat", "w.xml"}));
    EXPECT_NE(read_file("w.xml").find("eeee"), std::string::npos);
}

TEST_F(OutputTest, SymbolicLinksAreFollowed) {
    std::filesystem::create_directory("real");
    std::filesystem::create_symlink("real/w.xml", "link.xml");
    EXPECT_EQ(convert("w.dat", "link.xml").err, "");
    EXPECT_TRUE(std::filesystem::is_symlink("link.xml"));
    EXPECT_NE(read_file("real/w.xml").find("</w>"), std::string::npos);
}

// Output that has been sent cannot be taken back, so it must not look complete.
TEST_F(OutputTest, ADocumentThatFailsOnStandardOutputHasNoEndTag) {
    const Outcome outcome = convert("bad.dat", "-");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out.find("</w>"), std::string::npos);
}

TEST_F(OutputTest, FullDisks) {
    const std::string full = ": No space left on device\n";
    EXPECT_EQ(convert("w.dat", "/dev/full").err, "sxml: /dev/full" + full);
    const Outcome piped = convert("w.dat", "-", {}, "", "/dev/full");
    EXPECT_EQ(piped.err, "sxml: standard output" + full);
    EXPECT_EQ(piped.status, 1);
    for (const char* command : {"layout", "dtd", "schema"}) {
        const Outcome outcome = sxml({command, "w.cpy"}, "", "/dev/full");
        EXPECT_EQ(outcome.err, "sxml: standard output" + full) << command;
        EXPECT_EQ(outcome.status, 1) << command;
    }
    EXPECT_EQ(sxml({"compile", "w.cpy", "-o", "/dev/full"}).err, "sxml: /dev/full" + full);
    for (const std::vector<std::string>& words : {std::vector<std::string>{"--help"},
                                                  {"--version"},
                                                  {"help"},
                                                  {"help", "tree"},
                                                  {"tree", "--help"},
                                                  {"tree", "-V"},
                                                  {"layout", "w.cpy", "--json"},
                                                  {"dump", "w.dat", "-l", "w.cpy"},
                                                  {"check", "w.dat", "-l", "w.cpy"}}) {
        const Outcome outcome = sxml(words, "", "/dev/full");
        EXPECT_EQ(outcome.err, "sxml: standard output" + full) << words.front();
        EXPECT_EQ(outcome.status, 1) << words.front();
    }
}

// The number of a shell's descriptor names nothing.
TEST_F(OutputTest, LayoutsFromPipesAreNamedAlikeInEveryRun) {
    for (const char* shell :
         {"$0 to-xml w.dat - -l <(cat w.cpy)", "$0 to-xml w.dat - -l <(tail -n +2 w.cpy)"}) {
        const Outcome outcome = run({"bash", "-c", shell, command_under_test()});
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        EXPECT_NE(outcome.out.find("<records>"), std::string::npos) << outcome.out;
        EXPECT_EQ(outcome.out.find("<_6"), std::string::npos) << outcome.out;
    }
}

// What does not fit is said, and what is complete all the same.
TEST_F(OutputTest, FullDisksForReportsAndTraces) {
    Outcome outcome = convert("w.dat", "w.xml", {"--report", "/dev/full"});
    EXPECT_EQ(outcome.err,
              "sxml: /dev/full: No space left on device; all else of the run is complete\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(std::filesystem::exists("w.xml"));
    outcome = convert("bad.dat", "w2.xml", {"--report", "/dev/full"});
    EXPECT_NE(outcome.err.find("bad.dat: record "), std::string::npos) << outcome.err;
    EXPECT_NE(outcome.err.find("sxml: /dev/full: No space left on device\n"), std::string::npos)
        << outcome.err;
    EXPECT_EQ(outcome.status, 1);
    setenv("SXML_TRACE", "1", 1);
    setenv("SXML_TRACE_FILE", "/dev/full", 1);
    outcome = convert("w.dat", "w.xml");
    unsetenv("SXML_TRACE");
    unsetenv("SXML_TRACE_FILE");
    EXPECT_EQ(outcome.err,
              "sxml: the trace cannot be written, and is incomplete: No space left on device\n");
    EXPECT_EQ(outcome.status, 1);
}

TEST_F(OutputTest, FullDisksAreNoticedOnTheWay) {
    const Outcome outcome = run({"sh", "-c",
                                 "yes | tr '\\n' y | timeout 60 $0 to-xml - /dev/full"
                                 " --layout w.cpy",
                                 command_under_test()});
    EXPECT_EQ(outcome.err, "sxml: /dev/full: No space left on device\n");
    EXPECT_EQ(outcome.status, 1);
}

// The schema is a second file: both appear, or neither.
TEST_F(OutputTest, SchemaAndDocumentAppearTogether) {
    const std::vector<std::string> schema = {"--set", "SXML_CREATE_STYLE=SCHEMA", "--set",
                                             "SXML_SCHEMA_NAME=w.xsd"};
    EXPECT_EQ(convert("bad.dat", "w.xml", schema).status, 1);
    EXPECT_EQ(files(), (std::vector<std::string>{"bad.dat", "w.cpy", "w.dat"}));
    EXPECT_EQ(convert("w.dat", "w.xml", schema).err, "");
    EXPECT_EQ(read_file("w.xsd"), sxml({"schema", "w.cpy"}).out);
    EXPECT_NE(read_file("w.xml").find("xs:noNamespaceSchemaLocation=\"w.xsd\">"),
              std::string::npos);
    EXPECT_EQ(run({"xmllint", "--noout", "--schema", "w.xsd", "w.xml"}).status, 0);
    EXPECT_EQ(files(), (std::vector<std::string>{"bad.dat", "w.cpy", "w.dat", "w.xml", "w.xsd"}));

    std::vector<std::string> elsewhere = schema;
    elsewhere.back() = "SXML_SCHEMA_NAME=/dev/full";
    EXPECT_EQ(convert("w.dat", "w2.xml", elsewhere).err,
              "sxml: /dev/full: No space left on device\n");
    elsewhere.back() = "SXML_SCHEMA_NAME=none/w.xsd";
    EXPECT_EQ(convert("w.dat", "w2.xml", elsewhere).status, 1);
    EXPECT_FALSE(std::filesystem::exists("w2.xml"));

    elsewhere.insert(elsewhere.end(), {"--set", "SXML_CREATE_SCHEMA=no"});
    EXPECT_EQ(convert("w.dat", "w2.xml", elsewhere).err, "");
    EXPECT_NE(read_file("w2.xml").find("SchemaLocation=\"none/w.xsd\">"), std::string::npos);
}

// The way from the document to its schema, whatever the current folder is.
TEST_F(OutputTest, SchemasAreNamedFromTheDocument) {
    std::filesystem::create_directories("docs/2026");
    std::filesystem::create_directory("a schema");
    const struct {
        const char* document;
        const char* schema;
        const char* reference;
    } cases[] = {
        {"w.xml", "w.xsd", "w.xsd"},
        {"docs/w.xml", "./w.xsd", "../w.xsd"},
        {"docs/2026/w.xml", "docs/w.xsd", "../w.xsd"},
        {"w.xml", "docs/w.xsd", "docs/w.xsd"},
        {"docs/w.xml", "a schema/\xC3\xA9.xsd", "../a%20schema/%C3%A9.xsd"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(convert("w.dat", c.document, {"--schema", c.schema}).err, "") << c.reference;
        const std::string document = read_file(c.document);
        EXPECT_NE(document.find("SchemaLocation=\"" + std::string(c.reference) + "\""),
                  std::string::npos)
            << document;
        EXPECT_EQ(document.find("DOCTYPE"), std::string::npos);
        EXPECT_EQ(run({"xmllint", "--noout", "--schema", c.schema, c.document}).status, 0);
    }
    EXPECT_NE(convert("w.dat", "-", {"--schema", "docs/w.xsd"}).out.find("=\"docs/w.xsd\""),
              std::string::npos);
    EXPECT_EQ(convert("bad.dat", "w2.xml", {"--schema", "w2.xsd"}).status, 1);
    EXPECT_FALSE(std::filesystem::exists("w2.xsd"));
}

// Waits, for a few seconds at most, until a file whose name starts so is there.
bool appears(const std::string& start) {
    for (int tries = 0; tries < 500; ++tries) {
        for (const auto& entry : std::filesystem::directory_iterator(".")) {
            if (entry.path().filename().string().rfind(start, 0) == 0) return true;
        }
        usleep(10'000);
    }
    return false;
}

TEST_F(OutputTest, InterruptionsRemoveTheTemporaryFile) {
    const std::string command = command_under_test();
    for (const int signal_number : {SIGINT, SIGTERM, SIGHUP}) {
        mkfifo("records", 0600);
        const pid_t process = fork();
        if (process == 0) {
            execl(command.c_str(), "sxml", "to-xml", "records", "w.xml", "--layout", "w.cpy",
                  nullptr);
            _exit(127);
        }
        const int writer = open("records", O_WRONLY);
        ASSERT_TRUE(appears(".w.xml."));
        kill(process, signal_number);
        int status = 0;
        waitpid(process, &status, 0);
        close(writer);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal_number);
        unlink("records");
        EXPECT_EQ(files(), (std::vector<std::string>{"bad.dat", "w.cpy", "w.dat"}));
    }
}

TEST_F(OutputTest, SettingsShapeTheDocument) {
    const Outcome outcome =
        convert("w.dat", "-",
                {"--name", "words", "--set", "4GL_COLUMN_CASE=2", "--set",
                 "SXML_STYLESHEET_TYPE=text/css", "--set", "SXML_STYLESHEET_HREF=a.css"});
    EXPECT_EQ(outcome.err, "");
    EXPECT_NE(outcome.out.find("<?xml-stylesheet type=\"text/css\" href=\"a.css\"?><!DOCTYPE "
                               "words [\r\n<!ELEMENT words (ENTRY-LINE)*>\r\n"),
              std::string::npos)
        << outcome.out;
}

// The environment sets what the command line does not.
// A setting that would make a document that no parser accepts is refused by name, where it counts.
TEST_F(OutputTest, SettingsMayNotSpoilTheDocument) {
    const std::string bad = "s\xFF.xsd";
    const struct {
        std::vector<std::string> settings;
        const char* refused;  // null: it is not
    } cases[] = {
        {{"SXML_CREATE_STYLE=SCHEMA", "SXML_SCHEMA_NAME=" + bad}, "SXML_SCHEMA_NAME"},
        {{"SXML_CREATE_STYLE=SCHEMA", "SXML_SCHEMA_NAME=\x01.xsd"}, "SXML_SCHEMA_NAME"},
        {{"SXML_CREATE_STYLE=SCHEMA", "SXML_SCHEMA_NAME=" + bad, "SXML_ENCODING=ISO-8859-1"},
         nullptr},
        {{"SXML_CREATE_STYLE=SCHEMA", "SXML_SCHEMA_NAME=" + bad, "SXML_ENCODING=US-ASCII"},
         "SXML_SCHEMA_NAME"},
        {{"SXML_CREATE_STYLE=SCHEMA", "SXML_SCHEMA_NAME=\xC3\xA9?>.xsd"}, nullptr},
        {{"SXML_SCHEMA_NAME=" + bad}, nullptr},
        {{"SXML_STYLESHEET_TYPE=text/xsl", "SXML_STYLESHEET_HREF=a?>b"}, "SXML_STYLESHEET_HREF"},
        {{"SXML_STYLESHEET_TYPE=\xE9", "SXML_STYLESHEET_HREF=a"}, "SXML_STYLESHEET_TYPE"},
        {{"SXML_STYLESHEET_TYPE=text/xsl", "SXML_STYLESHEET_HREF=\xC3\xA9.xsl"}, nullptr},
        {{"SXML_STYLESHEET_HREF=a?>b"}, nullptr},
    };
    for (const auto& c : cases) {
        write_file("out.xml", "as it was");
        std::filesystem::remove(bad);
        std::vector<std::string> more;
        for (const std::string& setting : c.settings) more.insert(more.end(), {"--set", setting});
        const Outcome outcome = convert("w.dat", "out.xml", more);
        if (c.refused == nullptr) {
            EXPECT_EQ(outcome.status, 0) << outcome.err;
            EXPECT_EQ(run({"xmllint", "--noout", "out.xml"}).status, 0) << c.settings[0];
            continue;
        }
        EXPECT_NE(outcome.status, 0) << c.settings.back();
        EXPECT_NE(outcome.err.find(std::string("sxml: ") + c.refused + ": "), std::string::npos)
            << outcome.err;
        EXPECT_EQ(read_file("out.xml"), "as it was");
        EXPECT_FALSE(std::filesystem::exists(bad));
    }
}

TEST_F(OutputTest, SettingsComeFromTheEnvironmentToo) {
    setenv("SXML_ENCODING", "iso-8859-1", 1);
    setenv("SXML_CREATE_STYLE", "NONE", 1);
    write_file("w.dat", "caf\xE9xx");
    const Outcome from_environment = convert("w.dat", "-");
    const Outcome overridden = convert("w.dat", "-", {"--encoding", "utf-8"});
    unsetenv("SXML_ENCODING");
    unsetenv("SXML_CREATE_STYLE");
    EXPECT_EQ(from_environment.out.find("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>"), 0U);
    EXPECT_EQ(from_environment.out.find("DOCTYPE"), std::string::npos);
    EXPECT_EQ(overridden.status, 1);
    EXPECT_NE(overridden.err.find("not valid UTF-8"), std::string::npos) << overridden.err;
}

}  // namespace
