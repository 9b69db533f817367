// Where the files of COBOL programs are, and what is in them.
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>

#include "tests/gnucobol/cobol_test.h"

namespace {

// All files below the current folder except those at its top, in order.
std::string tree() {
    std::vector<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator("tree")) {
        if (entry.is_regular_file()) names.push_back(entry.path().string());
    }
    std::sort(names.begin(), names.end());
    std::string text;
    for (const std::string& name : names) text += name + "\n";
    return text;
}

TEST_F(CobolTest, NamesLeadToTheFilesThatTheRuntimeWouldOpen) {
    compile_plain(PROGRAMS + "names.cbl", "plain");
    compile_for_xml(PROGRAMS + "names.cbl", "xml");
    const std::string root = fs::current_path().string();
    write_file("folder.cfg", "file_path " + root + "/tree/" + std::string(70, 'f') + "\n");
    write_file("mangle.cfg", "setenv DD_set_here=set_there\nenv_mangle yes\n");
    for (const auto& [name, value] :
         std::vector<std::pair<std::string, std::string>>{{"SXML_PATH", PROGRAMS},
                                                          {"SXML_FILES", "*"},
                                                          {"DD_big", "BIG"},
                                                          {"dd_small", "SMALL"},
                                                          {"neither", "NEITHER"},
                                                          {"DD_with_dot", "DOT"},
                                                          {"DD_far", root + "/tree/far/f"},
                                                          {"DD_folder", "sub"},
                                                          {"DD_1st", "FIRST"},
                                                          {"DD_marked", "-F as-it-is"},
                                                          {"DD_a_b", "MANGLED"}}) {
        set(name, value);
    }
    std::vector<std::string> names = {"big",
                                      "small",
                                      "neither",
                                      "none",
                                      "with.dot",
                                      "$big",
                                      "$none",
                                      "far",
                                      "$far",
                                      "marked",
                                      "folder/a",
                                      "$folder/b",
                                      "sub/c",
                                      "$none/d",
                                      "sub/$big",
                                      "sub/$none/e",
                                      "sub/$none",
                                      "folder/$folder/f",
                                      root + "/tree/$folder/g",
                                      "./h",
                                      "sub\\i",
                                      "sub//j",
                                      ".hidden",
                                      "-x",
                                      "-F big",
                                      "-d  sub/big",
                                      "1st",
                                      "$1st/k",
                                      "1st/l",
                                      "a-b",
                                      "a b",
                                      "set_here",
                                      "sub/",
                                      "$"};
    // Release 3.2 leaves letters of an earlier name at the end of one that it takes a mark from.
    if (run({"cobc", "--version"}).out.find(" 3.2.") != std::string::npos) {
        std::erase_if(names, [](const std::string& name) {
            return name.starts_with("-F") || name.starts_with("-d") || name == "marked";
        });
    }
    const std::vector<std::pair<std::string, std::string>> settings = {
        {"", ""},
        {"COB_FILE_PATH", "sub"},
        {"COB_FILE_PATH", root + "/tree/far"},
        {"COB_ENV_MANGLE", "true"},
        {"COB_RUNTIME_CONFIG", root + "/folder.cfg"},
        {"COB_RUNTIME_CONFIG", root + "/mangle.cfg"}};
    for (const auto& [name, value] : settings) {
        std::vector<std::string> seen;
        for (const std::string program : {"../plain", "../xml"}) {
            fs::remove_all("tree");
            for (const std::string folder :
                 {"sub/sub", "far/sub/sub", "FIRST", "far/FIRST", "subsub"}) {
                fs::create_directories("tree/" + folder);
            }
            fs::create_directories("tree/" + std::string(70, 'f') + "/sub");
            fs::current_path("tree");
            if (!name.empty()) setenv(name.c_str(), value.c_str(), 1);
            std::vector<std::string> words = {program};
            words.insert(words.end(), names.begin(), names.end());
            const Outcome outcome = run_program(words);
            if (!name.empty()) unsetenv(name.c_str());
            fs::current_path("..");
            seen.push_back(outcome.out + tree());
        }
        EXPECT_EQ(seen[1], seen[0]) << name << " " << value;
        EXPECT_NE(seen[0].find("00\n"), std::string::npos);
    }
}

TEST_F(CobolTest, TextsThatADocumentCannotHoldAreRefused) {
    assign({"NOTES"}, ".xml");
    compile_for_xml(PROGRAMS + "texts.cbl", "texts");
    const std::string bad = "sxml: NOTES.xml: WRITE: file status 30: field text_of: ";
    const auto not_utf8 = [&](const std::string& byte) {
        return bad + "the byte 0x" + byte +
               " is not valid UTF-8; if the text is in another character set, name it: "
               "SXML_ENCODING=ISO-8859-1\n";
    };
    const std::string in_any_encoding =
        bad +
        "the byte 0x01 is a control character that XML does not allow; does the layout fit "
        "the records? Binary data needs the directive `hex` in the copybook\n" +
        bad +
        "a NUL byte with text after it, which would be lost; does the layout fit the "
        "records?\n";
    const Outcome utf8 = run_program({"./texts"});
    EXPECT_EQ(utf8.out,
              "open 00\nwrite 00\nwrite 30\nwrite 30\nwrite 30\nwrite 30\nwrite 30\n"
              "write 30\nwrite 00\nwrite 00\nclose 00\n");
    EXPECT_EQ(utf8.err,
              not_utf8("E4") + not_utf8("C3") + not_utf8("ED") + not_utf8("EF") + in_any_encoding);
    EXPECT_EQ(well_formed("NOTES.xml"), "");
    set("SXML_ENCODING", "iso-8859-1");
    EXPECT_EQ(run_program({"./texts"}).err, in_any_encoding);
    EXPECT_EQ(well_formed("NOTES.xml"), "");
    set("SXML_ENCODING", "US-ASCII");
    EXPECT_NE(run_program({"./texts"}).err.find("0xE4 is no character of US-ASCII"),
              std::string::npos);
    for (const std::string encoding : {"UTF-16", "IBM037", "none"}) {
        set("SXML_ENCODING", encoding);
        const Outcome refused = run_program({"./texts"});
        EXPECT_TRUE(refused.out.starts_with("open 30\nwrite 48\n")) << refused.out;
        EXPECT_NE(refused.err.find("SXML_ENCODING: " + encoding), std::string::npos) << refused.err;
    }
}

TEST_F(CobolTest, DocumentsFromTheWebAreRead) {
    set("TMPDIR", fs::current_path().string() + "/private");
    fs::create_directory("private");
    compile_for_xml(PROGRAMS + "statuses.cbl", "statuses");
    compile_for_xml(PROGRAMS + "ending.cbl", "ending");
    const std::string record = "<r><text_of>a\u00e4a\u00e4a\u00e4\u00e4</text_of></r>";
    write_file("good.xml", "<x>" + record + "</x>");
    write_file("cut.xml", "<x>" + record + "\n");
    std::FILE* const server =
        popen("echo $$; exec python3 -u -m http.server 0 --bind 127.0.0.1 2>/dev/null", "r");
    ASSERT_NE(server, nullptr);
    int process = 0;
    int port = 0;
    const int read = std::fscanf(server, "%d Serving HTTP on 127.0.0.1 port %d", &process, &port);
    const std::string site = "http://127.0.0.1:" + std::to_string(port) + "/";
    const Outcome outcome =
        run_program({"./statuses", site + "good.xml", site + "cut.xml", site + "missing.xml"});
    // A signal takes the private copy along.
    set("DD_result_xml", site + "good.xml");
    const Outcome ended =
        run({"bash", "-c",
             "./ending fetch 2>said & while ! grep -qs waiting said; do sleep "
             "0.02; done; ls -A private | grep -c sxml-input; kill $!; wait $! 2>/dev/null"});
    EXPECT_EQ(ended.out, "1\n");
    if (process > 0) kill(process, SIGTERM);
    pclose(server);
    ASSERT_EQ(read, 2);
    // What does not fit of a character is blank.
    const std::string expected = "open 00\n  read 04 0000 +00000 [a\u00e4a\u00e4a\u00e4 ]\n  read ";
    EXPECT_NE(outcome.out.find("good.xml: " + expected + "10"), std::string::npos) << outcome.out;
    EXPECT_NE(outcome.out.find("cut.xml: " + expected + "30"), std::string::npos) << outcome.out;
    EXPECT_NE(outcome.out.find("missing.xml: open 35"), std::string::npos) << outcome.out;
    EXPECT_NE(
        outcome.err.find("cut.xml: READ: file status 30: the document ends too early: line 2, "),
        std::string::npos)
        << outcome.err;
    EXPECT_TRUE(fs::is_empty("private"));
}

// The user of a program with the rights of another group does not decide which files and code it
// uses.
TEST_F(CobolTest, ProgramsWithOtherRightsDoNotTrustTheEnvironment) {
    struct statvfs system {};
    if (geteuid() != 0 || statvfs(".", &system) != 0 || (system.f_flag & ST_NOSUID) != 0) {
        GTEST_SKIP() << "needs root, and a file system with set-group-ID programs";
    }
    compile_for_xml(PROGRAMS + "statuses.cbl", "statuses");
    write_file("a.xml", "<x><r><number_of>5</number_of></r></x>");
    write_file("a.doc", read_file("a.xml"));
    write_file("short.cpy", "       01 R.\n           05 T PIC X(5).\n");
    set("SXML_FILES", "*.doc");
    set("SXML_LAYOUT_a", "short.cpy");
    set("SXML_MODULE", "none.so");
    set("SXML_TRACE", "9");
    set("SXML_TRACE_FILE", "trace");
    const auto opened = [](const std::string& name) {
        const std::string out = run_program({"./statuses", name}).out;
        return out.substr(0, out.find_first_of("\n", out.find(": open")));
    };
    const std::string url = "http://127.0.0.1:1/a.xml";
    EXPECT_EQ(opened("a.xml"), "a.xml: open 39");
    EXPECT_EQ(opened("a.doc"), "a.doc: open 39");
    EXPECT_EQ(opened(url), url + ": open 35");
    EXPECT_TRUE(fs::exists("trace"));
    fs::remove("trace");
    ASSERT_EQ(chown("statuses", 0, 1), 0);
    ASSERT_EQ(chmod("statuses", 02755), 0);
    EXPECT_EQ(opened("a.xml"), "a.xml: open 00");
    EXPECT_EQ(opened("a.doc"), "a.doc: open 00");  // a plain file
    EXPECT_EQ(opened(url), url + ": open 37");
    set("SXML_NETWORK", "yes");
    EXPECT_EQ(opened(url), url + ": open 35");
    EXPECT_FALSE(fs::exists("trace"));
}

// A setting that would make a document that no parser accepts.
TEST_F(CobolTest, SettingsMayNotSpoilTheDocument) {
    compile_for_xml(PROGRAMS + "names.cbl", "names");
    set("SXML_PATH", PROGRAMS);
    set("SXML_STYLESHEET_TYPE", "text/xsl");
    set("SXML_STYLESHEET_HREF", "a?>b");
    write_file("spoiled.xml", "as it was");
    const Outcome outcome = run_program({"./names", "spoiled.xml"});
    EXPECT_EQ(outcome.out.find("spoiled.xml 00"), std::string::npos) << outcome.out;
    EXPECT_EQ(outcome.out.find("00\n"), std::string::npos) << outcome.out;
    EXPECT_NE(outcome.err.find("SXML_STYLESHEET_HREF: "), std::string::npos) << outcome.err;
    EXPECT_EQ(read_file("spoiled.xml"), "as it was");
}

// An attribute is not a declaration, and a chain of entities that would overflow the stack is
// reported.
TEST_F(CobolTest, DocumentsAreNotTakenForWhatTheyAreNot) {
    compile_for_xml(PROGRAMS + "statuses.cbl", "statuses");
    write_file(
        "attribute.xml",
        "<x encoding='ISO-8859-1'><r><text_of>a\u00e4a\u00e4a\u00e4\u00e4</text_of></r></x>");
    std::string chain = "<!DOCTYPE x [<!ENTITY e0 'x'>";
    for (int i = 1; i < 60000; ++i) {
        chain += "<!ENTITY e" + std::to_string(i) + " '&e" + std::to_string(i - 1) + ";'>";
    }
    write_file("chain.xml", chain + "]><x><r><text_of>&e59999;</text_of></r></x>");
    const Outcome outcome = run_program({"./statuses", "attribute.xml", "chain.xml"});
    EXPECT_NE(outcome.out.find("[a\u00e4a\u00e4a\u00e4 ]"), std::string::npos) << outcome.out;
    EXPECT_NE(outcome.out.find("chain.xml: open 30"), std::string::npos) << outcome.out;
    EXPECT_NE(outcome.err.find("entities nest more than 2,000 deep"), std::string::npos)
        << outcome.err;
}

// Everything that cobc compiles: free format, modules, and what they say when asked.
TEST_F(CobolTest, ModulesInFreeFormatTellWhatTheyDo) {
    write_file("inner.cob",
               "identification division.\nprogram-id. inner.\nenvironment division.\n"
               "input-output section.\nfile-control.\nselect notes assign to \"notes.xml\".\n"
               "data division.\nfile section.\nfd notes.\n01 note.\n02 greeting pic x(5).\n"
               "procedure division.\nopen output notes. move \"hello\" to greeting. write note.\n"
               "goback.\n");
    ASSERT_EQ(sxml({"cob", "-free", "-m", "inner.cob"}).status, 0);
    set("SXML_VERBOSE", "yes");
    const Outcome outcome = run_program({"cobcrun", "inner"});
    EXPECT_EQ(outcome.err,
              "sxml: notes.xml: OPEN OUTPUT: file status 00: done\n"
              "sxml: notes.xml: WRITE: file status 00: done\n");
    EXPECT_EQ(well_formed("notes.xml"), "");
}

TEST_F(CobolTest, NoMemoryIsMisused) {
    compile_for_xml(PROGRAMS + "units.cbl", "units");
    compile_for_xml(PROGRAMS + "order.cbl", "order");
    assign({"FIGURES", "SHARED", "SORTED", "LEFT", "DATA", "MAYBE", "NOTHING"}, ".xml");
    for (const std::string program : {"./units", "./order"}) {
        const Outcome outcome = run({"valgrind", "-q", "--error-exitcode=99", program});
        EXPECT_EQ(outcome.status, 0) << outcome.err;
    }
}

}  // namespace
