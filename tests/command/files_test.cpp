// The effects of a run on files: inputs are unchanged, targets keep their attributes, private files
// are removed, and streams that are closed or non-blocking lose nothing.

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <map>

#include "tests/command/command_run.h"

namespace {

namespace fs = std::filesystem;

const std::string SXML = command_under_test();

class FilesOfRunsTest : public CommandTest {
  protected:
    void SetUp() override {
        CommandTest::SetUp();
        write_file("c.cpy",
                   "       01  ENTRY-LINE.\n           05  WORD PIC X(4).\n       COPY rest.\n");
        write_file("rest.cpy", "           05  MARK PIC X(2).\n");
        write_file("r.dat", "aaaabb    cc");
        EXPECT_EQ(sxml({"to-xml", "r.dat", "d.xml", "-l", "c.cpy"}).err, "");
        write_file("settings", "SXML_CREATE_STYLE NONE\n");
        fs::create_symlink("c.cpy", "link.cpy");
        fs::create_hard_link("r.dat", "same.dat");
    }

    // A line for bash, in which $sxml is the command.
    static Outcome shell(const std::string& line, const std::string& output = "") {
        return run({"bash", "-c", "sxml=" + SXML + "; " + line}, "", output);
    }
    static std::map<std::string, std::string> contents_of_files() {
        std::map<std::string, std::string> contents;
        for (const std::string& name : files()) contents[name] = read_file(name);
        return contents;
    }
    static mode_t mode_of(const std::string& name) {
        struct stat status {};
        EXPECT_EQ(stat(name.c_str(), &status), 0) << name;
        return status.st_mode & 07777;
    }
};

TEST_F(FilesOfRunsTest, NoOutputIsAnInput) {
    const struct {
        const char* line;
        std::vector<std::string> named;
    } cases[] = {
        {"$sxml compile c.cpy -o c.cpy", {"c.cpy"}},
        {"$sxml compile c.cpy -o link.cpy", {"link.cpy", "c.cpy"}},
        {"$sxml compile c.cpy -o rest.cpy", {"rest.cpy"}},
        {"$sxml to-xml r.dat ./r.dat -l c.cpy", {"./r.dat", "r.dat"}},
        {"$sxml to-xml r.dat same.dat -l c.cpy", {"same.dat", "r.dat"}},
        {"$sxml to-xml r.dat c.cpy -l link.cpy", {"c.cpy", "link.cpy"}},
        {"$sxml to-xml r.dat rest.cpy -l c.cpy", {"rest.cpy"}},
        {"$sxml to-xml r.dat new.xml -l c.cpy --schema r.dat", {"r.dat"}},
        {"$sxml to-xml r.dat new.xml -l c.cpy --schema ./new.xml", {"./new.xml", "new.xml"}},
        {"$sxml to-xml r.dat new.xml -l c.cpy --set SXML_CREATE_STYLE=SCHEMA"
         " --set SXML_SCHEMA_NAME=c.cpy",
         {"c.cpy"}},
        {"$sxml to-xml - same.dat -l c.cpy <r.dat", {"standard input", "same.dat"}},
        {"$sxml to-xml r.dat - -l c.cpy --encoding cp037 >>r.dat", {"standard output", "r.dat"}},
        {"$sxml layout c.cpy >>c.cpy", {"standard output", "c.cpy"}},
        {"$sxml dump r.dat -l c.cpy >>r.dat", {"standard output", "r.dat"}},
        {"$sxml tree d.xml >>d.xml", {"standard output", "d.xml"}},
        {"$sxml from-xml d.xml d.xml -l c.cpy", {"d.xml"}},
        {"$sxml from-xml d d.xml -l c.cpy", {"d.xml"}},
        {"$sxml from-xml d.xml link.cpy -l c.cpy", {"link.cpy", "c.cpy"}},
        {"SXML_CONFIG=settings $sxml to-xml r.dat settings -l c.cpy", {"settings"}},
        {"$sxml to-xml - new.xml -l - <c.cpy", {"standard input would be read twice"}},
        {"$sxml from-xml - new.dat -l - <c.cpy", {"standard input would be read twice"}},
        {"$sxml check - -l - <c.cpy", {"standard input would be read twice"}},
        {"$sxml to-xml r.dat - -l c.cpy --report -", {"standard output would be written twice"}},
        {"$sxml from-xml d.xml - -l c.cpy --rejects -", {"standard output would be written"}},
        {"SXML_TRACE=11 SXML_TRACE_FILE=r.dat $sxml to-xml same.dat new.xml -l c.cpy",
         {"r.dat", "same.dat"}},
    };
    const auto before = contents_of_files();
    for (const auto& c : cases) {
        const Outcome outcome = shell(c.line);
        EXPECT_EQ(outcome.status, 2) << c.line;
        EXPECT_EQ(outcome.err.find("sxml: "), 0U) << outcome.err;
        for (const std::string& name : c.named) {
            EXPECT_NE(outcome.err.find(name), std::string::npos) << c.line << outcome.err;
        }
        EXPECT_EQ(contents_of_files(), before) << c.line;
    }
    // Devices are not files, and a document may be rewritten in place.
    EXPECT_EQ(shell("$sxml to-xml /dev/null /dev/null -l c.cpy").err, "");
    EXPECT_EQ(shell("$sxml rewrite d.xml ./d.xml").err, "");
}

TEST_F(FilesOfRunsTest, ClosedStreamsTakeNoFileInTheirPlace) {
    const std::string document = read_file("d.xml");
    const std::string convert = "$sxml to-xml r.dat n.xml -l c.cpy";
    write_file("bad.cpy",
               "       01  R.\n           05  F PIC X(4).\n           05  F PIC X(4).\n");
    for (const char* closing : {" <&-", " >&-", " 2>&-", " <&- >&- 2>&-"}) {
        EXPECT_EQ(shell(convert + closing).status, 0) << closing;
        EXPECT_EQ(read_file("n.xml"), document) << closing;
        fs::remove("n.xml");
    }
    // Nothing can be read or written there, and that is reported.
    const std::string closed_input = shell("$sxml to-xml - n.xml -l c.cpy <&-").err;
    EXPECT_EQ(closed_input, "sxml: standard input: Bad file descriptor\n");
    for (const char* command :
         {"to-xml r.dat -", "from-xml d.xml -", "check r.dat", "dump r.dat"}) {
        const Outcome outcome = shell(std::string("$sxml ") + command + " -l c.cpy >&-");
        EXPECT_EQ(outcome.status, 1) << command;
        EXPECT_EQ(outcome.err, "sxml: standard output: Bad file descriptor\n") << command;
    }
    EXPECT_EQ(shell("$sxml layout nothing.cpy 2>&-").status, 1);
}

TEST_F(FilesOfRunsTest, TargetsKeepWhatIsTheirs) {
    const std::string document = read_file("d.xml");
    const mode_t mask = umask(022);
    for (const auto& [before, after] : {std::pair<mode_t, mode_t>{0600, 0600},
                                        {0664, 0664},
                                        {04755, 0755},
                                        {02755, 0755},
                                        {01644, 0644}}) {
        write_file("n.xml", "old");
        chmod("n.xml", before);
        EXPECT_EQ(shell("$sxml to-xml r.dat n.xml -l c.cpy").err, "");
        EXPECT_EQ(mode_of("n.xml"), after);
        EXPECT_EQ(read_file("n.xml"), document);
    }
    if (geteuid() == 0) {
        EXPECT_EQ(chown("n.xml", 1234, 2345), 0);
        EXPECT_EQ(shell("$sxml to-xml r.dat n.xml -l c.cpy").err, "");
        struct stat status {};
        stat("n.xml", &status);
        EXPECT_EQ(status.st_uid, 1234U);
        EXPECT_EQ(status.st_gid, 2345U);
    }
    fs::remove("n.xml");
    EXPECT_EQ(shell("umask 027; $sxml to-xml r.dat n.xml -l c.cpy").err, "");
    EXPECT_EQ(mode_of("n.xml"), 0640U);
    umask(mask);
}

// A user who may not give a file to its group gives his own group the others' rights.
TEST_F(FilesOfRunsTest, WithoutTheGroupItsRightsAreCut) {
    const std::string somebody = "setpriv --reuid=1234 --regid=1234 --clear-groups ";
    fs::permissions(".", fs::perms(0755));
    if (geteuid() != 0 || shell(somebody + "$sxml --version").status != 0) {
        GTEST_SKIP() << "needs another user who may run the command";
    }
    fs::create_directory("theirs");
    EXPECT_EQ(chown("theirs", 1234, 1234), 0);
    for (const auto& [before, after] :
         {std::pair<mode_t, mode_t>{0660, 0600}, {0674, 0644}, {0664, 0644}}) {
        write_file("theirs/n.xml", "old");
        chmod("theirs/n.xml", before);
        EXPECT_EQ(shell(somebody + "$sxml compile c.cpy -o theirs/n.xml").err, "");
        EXPECT_EQ(mode_of("theirs/n.xml"), after);
        fs::remove("theirs/n.xml");
    }
}

TEST_F(FilesOfRunsTest, LinksOfOthersInOpenFoldersAreNotFollowed) {
    if (geteuid() != 0) GTEST_SKIP() << "needs another user";
    fs::create_directory("open");
    chmod("open", 01777);
    fs::create_symlink(fs::absolute("n.xml"), "open/link.xml");
    EXPECT_EQ(shell("$sxml to-xml r.dat open/link.xml -l c.cpy").err, "");
    EXPECT_EQ(lchown("open/link.xml", 1234, 1234), 0);
    write_file("n.xml", "old");
    const Outcome outcome = shell("$sxml to-xml r.dat open/link.xml -l c.cpy");
    EXPECT_EQ(outcome.err, "sxml: open/link.xml: Permission denied\n");
    EXPECT_EQ(read_file("n.xml"), "old");
}

TEST_F(FilesOfRunsTest, PipesAndDevicesAreWrittenAndReadUnderAnyName) {
    const std::string document = read_file("d.xml");
    const std::string table = shell("$sxml layout c.cpy").out;
    const struct {
        const char* line;
        const std::string* out;
    } cases[] = {
        {"$sxml to-xml r.dat >(cat >n.xml; echo >done) -l c.cpy; until [ -e done ]; do sleep .01;"
         " done; cat n.xml",
         &document},
        {"$sxml to-xml r.dat /dev/stdout -l c.cpy", &document},
        {"{ $sxml to-xml r.dat /dev/stdout -l c.cpy; } >n.xml; cat n.xml", &document},
        {"mkfifo f; cat f & $sxml to-xml r.dat f -l c.cpy; wait", &document},
        {"ln -s f g; cat f & $sxml to-xml r.dat g -l c.cpy; wait", &document},
        {"$sxml to-xml <(cat r.dat) - -l c.cpy --name c", &document},
        {"$sxml to-xml r.dat - -l <(cat c.cpy) --name c -I .", &document},
        {"$sxml to-xml r.dat - -l - --name c <c.cpy", &document},
        {"$sxml layout <(cat c.cpy) -I .", &table},
        {"cat c.cpy | $sxml layout /dev/stdin -I .", &table},
        {"$sxml compile c.cpy -o - | $sxml layout -", &table},
        {"$sxml rewrite d.xml - | $sxml from-xml - /dev/stdout -l c.cpy | $sxml to-xml - - -l "
         "c.cpy",
         &document},
    };
    for (const auto& c : cases) {
        const Outcome outcome = shell(c.line);
        EXPECT_EQ(outcome.err, "") << c.line;
        EXPECT_EQ(outcome.out, *c.out) << c.line;
        for (const char* name : {"n.xml", "done"}) fs::remove(name);
    }
    EXPECT_NE(shell("$sxml layout - </dev/null").err.find("standard input: "), std::string::npos);
}

// The reader takes its time: the pipe is full again and again, and a write may not wait.
TEST_F(FilesOfRunsTest, OutputThatDoesNotWaitLosesNothing) {
    std::string copybook = "       01  R.\n";
    for (int i = 0; i < 3000; ++i) {
        copybook += "           05  FIELD-NUMBER-" + std::to_string(i) + " PIC X.\n";
    }
    write_file("wide.cpy", copybook);
    write_file("wide.dat", std::string(3000, 'x'));
    EXPECT_EQ(sxml({"to-xml", "wide.dat", "wide.xml", "-l", "wide.cpy"}).err, "");
    const std::string not_waiting =
        "python3 -c 'import os,sys; os.set_blocking(1, False); os.execvp(sys.argv[1], "
        "sys.argv[1:])' ";
    for (const char* line :
         {"layout wide.cpy", "compile wide.cpy -o -", "dtd wide.cpy", "schema wide.cpy",
          "tree wide.xml", "rewrite wide.xml -", "to-xml wide.dat - -l wide.cpy"}) {
        const std::string expected = shell(std::string("$sxml ") + line).out;
        ASSERT_GT(expected.size(), 70'000U) << line;
        const Outcome slow =
            shell("set -o pipefail; " + not_waiting + SXML + " " + line + " | { sleep .2; cat; }");
        EXPECT_EQ(slow.err, "") << line;
        EXPECT_EQ(slow.out, expected) << line;
    }
}

// Waits, for a few seconds at most, until a file whose name starts so is in the folder.
fs::path appears(const std::string& folder, const std::string& start) {
    for (int tries = 0; tries < 500; ++tries) {
        for (const auto& entry : fs::directory_iterator(folder)) {
            if (entry.path().filename().string().starts_with(start)) return entry.path();
        }
        usleep(10'000);
    }
    return {};
}

// What is kept of standard input and of web addresses, and what is being written.
TEST_F(FilesOfRunsTest, PrivateFilesGoWithTheRun) {
    mkfifo("fifo", 0600);
    fs::create_directory("tmp");
    fs::create_directory("out");
    const struct {
        const char* what;
        const char* line;  // waits for ever
        const char* folder;
        const char* start;
        bool is_private;
    } cases[] = {
        {"standard input", "umask 0; exec $sxml tree - <fifo", "tmp", ".sxml-input", true},
        {"a pipe", "umask 0; exec $sxml from-xml fifo out/r -l c.cpy", "tmp", ".sxml-input", true},
        {"a web address", "umask 0; exec $sxml tree http://127.0.0.1:$(cat port)/", "tmp",
         ".sxml-input", true},
        {"a relative target", "cd out; exec $sxml to-xml ../fifo n.xml -l ../c.cpy", "out",
         ".n.xml.", false},
    };
    // A server that accepts and never answers.
    const pid_t server = fork();
    if (server == 0) {
        execlp("python3", "python3", "-c",
               "import socket,time\ns=socket.socket(); s.bind(('127.0.0.1',0)); s.listen(9)\n"
               "open('port.new','w').write(str(s.getsockname()[1]))\n"
               "import os; os.rename('port.new','port')\ntime.sleep(60)",
               nullptr);
        _exit(127);
    }
    ASSERT_FALSE(appears(".", "port").empty());
    setenv("TMPDIR", fs::absolute("tmp").c_str(), 1);
    for (const auto& c : cases) {
        for (const int signal_number : {SIGINT, SIGTERM, SIGHUP}) {
            SCOPED_TRACE(c.what);
            const int held = open("fifo", O_RDWR);
            const pid_t process = fork();
            if (process == 0) {
                execlp("bash", "bash", "-c", ("sxml=" + SXML + "; " + c.line).c_str(), nullptr);
                _exit(127);
            }
            const fs::path file = appears(c.folder, c.start);
            EXPECT_FALSE(file.empty());
            EXPECT_TRUE(!c.is_private || mode_of(file) == 0600U);
            kill(process, signal_number);
            int status = 0;
            waitpid(process, &status, 0);
            close(held);
            EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal_number);
            EXPECT_TRUE(fs::is_empty("tmp"));
            EXPECT_TRUE(fs::is_empty("out"));
        }
    }
    kill(server, SIGKILL);
    waitpid(server, nullptr, 0);
    unsetenv("TMPDIR");
}

// Names that somebody else has predicted in the folder for temporary files.
TEST_F(FilesOfRunsTest, PrivateNamesCannotBeForeseen) {
    fs::create_directory("tmp");
    mkfifo("tmp/sxml-schema.xsd", 0666);
    mkfifo("tmp/sxml-schema.xml", 0666);
    mkfifo("tmp/sxml-dtd.xml", 0666);
    for (const char* command : {"schema", "dtd"}) {
        const Outcome outcome =
            shell(std::string("TMPDIR=tmp timeout 20 $sxml ") + command + " c.cpy");
        EXPECT_EQ(outcome.err, "") << command;
        EXPECT_EQ(outcome.status, 0) << command;
    }
    EXPECT_EQ(std::distance(fs::directory_iterator("tmp"), fs::directory_iterator()), 3);
    EXPECT_NE(shell("TMPDIR=none $sxml schema c.cpy").err.find("sxml: none: "), std::string::npos);
}

TEST_F(FilesOfRunsTest, LimitsOnTheSizeOfFilesEndWithAMessage) {
    fs::create_directory("tmp");
    const std::string limited = "limited() { (ulimit -f 0; TMPDIR=tmp exec \"$@\"); }; ";
    const struct {
        const char* line;
        const char* named;
    } cases[] = {
        {"limited $sxml to-xml r.dat n.xml -l c.cpy", "n.xml"},
        {"limited $sxml from-xml d.xml n.dat -l c.cpy", "n.dat"},
        {"limited $sxml compile c.cpy -o n.xfd", "n.xfd"},
        {"limited $sxml rewrite d.xml n.xml", "n.xml"},
        {"cat d.xml | limited $sxml tree -", "standard input"},
    };
    const std::vector<std::string> before = files();
    for (const auto& c : cases) {
        const Outcome outcome = shell(limited + c.line + " 2>&1 >/dev/null | cat");
        EXPECT_EQ(outcome.out.find("sxml: "), 0U) << c.line << outcome.out;
        EXPECT_NE(outcome.out.find(c.named), std::string::npos) << outcome.out;
        EXPECT_NE(outcome.out.find("File too large"), std::string::npos) << outcome.out;
        EXPECT_EQ(files(), before) << c.line;
        EXPECT_TRUE(fs::is_empty("tmp")) << c.line;
    }
}

}  // namespace
