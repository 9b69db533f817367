// What people see: colours, help that fits, how far a conversion has come.

#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <sstream>

#include "tests/command/command_run.h"

namespace {

const std::string SXML = SXML_BUILD_DIR "/bin/sxml";

// What a terminal of so many columns gets from a line for bash, in which $sxml is the command.
std::string shown(const std::string& line, unsigned short columns = 80) {
    int terminal = -1;
    winsize size{};
    size.ws_row = 25;
    size.ws_col = columns;
    const pid_t process = forkpty(&terminal, nullptr, nullptr, &size);
    if (process == 0) {
        execlp("bash", "bash", "-c", ("sxml=" + SXML + "; " + line).c_str(), nullptr);
        _exit(127);
    }
    EXPECT_GT(process, 0);
    std::string text;
    std::array<char, 4096> part;
    for (ssize_t size_read = 0; (size_read = read(terminal, part.data(), part.size())) > 0;) {
        text.append(part.data(), static_cast<std::size_t>(size_read));
    }
    close(terminal);
    waitpid(process, nullptr, 0);
    std::erase(text, '\r');
    return text;
}

class TerminalTest : public CommandTest {
  protected:
    void SetUp() override {
        CommandTest::SetUp();
        setenv("TERM", "xterm", 1);
        unsetenv("NO_COLOR");
        write_file("c.cpy", "       01  R.\n           05  WORD PIC X(40).\n");
        write_file("bad.cpy", "       01  R.\n           05  F PIC Q(4).\n");
    }
};

TEST_F(TerminalTest, MessagesHaveColoursWhereTheyAreWanted) {
    write_file("d.xml", "<d><r><word>a</word><note>: error: </note></r></d>");
    const std::string red = "\033[1;31m";
    const std::string plain = "\033[0m";
    EXPECT_EQ(shown("$sxml layout -Q c.cpy"),
              red + "sxml: " + plain +
                  "layout: there is no option -Q; `sxml layout --help` shows the options\n");
    const std::string compiler = shown("$sxml layout bad.cpy");
    EXPECT_EQ(compiler.find(red + "sxml: " + plain + "bad.cpy:2:"), 0U) << compiler;
    EXPECT_NE(compiler.find("05  F PIC Q(4).\n\033[1;32m "), std::string::npos) << compiler;
    const std::string warnings = shown("$sxml from-xml d.xml - -l c.cpy >/dev/null");
    EXPECT_EQ(warnings.find("\033[1msxml: " + plain + "\033[1;35mwarning: " + plain + "d.xml:1:21"),
              0U)
        << warnings;
    for (const char* line :
         {"NO_COLOR=1 $sxml layout bad.cpy", "TERM=dumb $sxml layout bad.cpy",
          "unset TERM; $sxml layout bad.cpy", "$sxml layout bad.cpy 2>&1 | cat"}) {
        const std::string text = shown(line);
        EXPECT_EQ(text.find('\033'), std::string::npos) << line << text;
        EXPECT_EQ(text.find("sxml: bad.cpy:2:"), 0U) << line << text;
    }
    EXPECT_NE(shown("NO_COLOR= $sxml layout bad.cpy").find('\033'), std::string::npos);
}

// Examples and tables after the options stand as they are.
TEST_F(TerminalTest, HelpFitsTheTerminal) {
    std::istringstream names(
        run({"bash", "-c", SXML + " --help | sed -n '/^Sub/,/^$/s/^  \\([a-z-]*\\) .*/\\1/p'"})
            .out);
    int subcommands = 0;
    for (std::string name; names >> name; ++subcommands) {
        for (const std::uint16_t columns : std::initializer_list<std::uint16_t>{60, 80}) {
            std::istringstream lines(shown("$sxml " + name + " --help", columns));
            for (std::string line; std::getline(lines, line) && line != "Example:";) {
                const bool is_in_table = name == "cob" && line.starts_with("  --");
                EXPECT_TRUE(is_in_table || line.size() <= columns) << name << ": " << line;
            }
        }
    }
    EXPECT_GE(subcommands, 14);
    // The words are those of the help for programs, from which the manual is made.
    const std::string piped = sxml({"tree", "--help"}).out;
    const std::string narrow = shown("$sxml tree --help", 45);
    const auto words = [](const std::string& text) {
        std::istringstream parts(text);
        return std::vector<std::string>(std::istream_iterator<std::string>(parts), {});
    };
    EXPECT_EQ(words(piped), words(narrow));
    EXPECT_NE(piped, narrow);
}

// The reader of the output takes its time, so that there is time to see.
TEST_F(TerminalTest, ConversionsSayHowFarTheyAre) {
    std::string document = "<d>\n";
    for (int i = 0; i < 20'000; ++i) document += "<r><word>w</word></r>\n";
    write_file("d.xml", document + "</d>\n");
    write_file("d.dat", std::string(80'000 * 40, 'x'));
    write_file("odd.xml", "<d><r><odd>1</odd></r>\n" + document.substr(3) +
                              "<r><odd>1</odd><word>w</word></r></d>\n");
    const std::string slowly = " >(sleep 0.5; cat >/dev/null) -l c.cpy";
    const struct {
        const char* what;
        std::string line;
        bool knows_the_size;
    } cases[] = {
        {"a document", "$sxml from-xml d.xml" + slowly, true},
        {"a record file", "$sxml to-xml d.dat" + slowly, true},
        {"records of a pipe", "cat d.dat | $sxml to-xml -" + slowly, false},
    };
    for (const auto& c : cases) {
        const std::string text = shown(c.line);
        const std::size_t first = text.find(" records, ");
        ASSERT_NE(first, std::string::npos) << c.what << text;
        const std::string line = text.substr(first, text.find("\033[K", first) - first);
        int percent = 0;
        const std::size_t comma = line.find("MB/s, ");
        const bool has_percent =
            comma != std::string::npos &&
            std::sscanf(line.c_str() + comma, "MB/s, %d%%, 0:00:0", &percent) == 1;
        EXPECT_EQ(has_percent, c.knows_the_size) << c.what << line;
        EXPECT_TRUE(!has_percent || (percent > 0 && percent < 100)) << line;
        EXPECT_EQ(line.ends_with(" left"), c.knows_the_size) << line;
        EXPECT_TRUE(text.ends_with("\033[K")) << text;  // the line is gone at the end
    }
    // One line, however many processes share the work: that of the first process, which knows the
    // size. The others are held up, so that there is time for theirs.
    std::string large = "<d>\n";
    for (int i = 0; i < 400'000; ++i) large += "<r><word>w</word></r>\n";
    write_file("large.xml", large + "</d>\n");
    const std::string shared = shown(
        "$sxml from-xml large.xml out -l c.cpy --jobs 2 & all=/proc/$!/task/$!/children; "
        "{ for i in 1 2 3; do sleep 0.05; kill -STOP $(cat $all); sleep 0.25; "
        "kill -CONT $(cat $all); done; } 2>/dev/null; wait");
    int lines = 0;
    for (std::size_t at = 0; (at = shared.find(" records, ", at)) != std::string::npos; ++at) {
        const std::string line = shared.substr(at, shared.find("\033[K", at) - at);
        EXPECT_TRUE(line.ends_with(" left")) << line;
        ++lines;
    }
    EXPECT_GT(lines, 0) << shared;
    // A message begins on a line of its own.
    const std::string text = shown("$sxml from-xml odd.xml" + slowly);
    EXPECT_NE(text.find("left\033[K\033[K\033[1msxml: "), std::string::npos) << text;
}

}  // namespace
