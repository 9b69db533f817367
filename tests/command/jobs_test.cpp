// Conversions that several processes share: the results are those of one.

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <thread>

#include "tests/command/command_run.h"

namespace {

namespace fs = std::filesystem;

const std::string COPYBOOK =
    "       01  ITEM.\n"
    "           05  CODE-ID PIC X(4).\n"
    "           05  AMOUNT PIC S9(3).\n"
    "           05  CITY PIC X(6).\n"
    "           05  TAG PIC X(2) OCCURS 2.\n";

using Words = std::vector<std::string>;

class JobsTest : public CommandTest {
  protected:
    void SetUp() override {
        CommandTest::SetUp();
        write_file("i.cpy", COPYBOOK);
    }

    // Everything that a run leaves, except the standard output.
    struct Traces {
        int status;
        std::string err, output, rejects, report;
        bool operator==(const Traces&) const = default;
    };
    friend void PrintTo(const Traces& traces, std::ostream* out) {
        *out << traces.status << "\n"
             << traces.err << "--- output\n"
             << traces.output << "--- rejects\n"
             << traces.rejects << "--- report\n"
             << traces.report;
    }

    static Traces traces(const std::string& subcommand, const std::string& input, Words options,
                         unsigned jobs) {
        for (const char* name : {"out", "rejects", "report"}) fs::remove(name);
        options.insert(options.begin(), {subcommand, input, "out", "-l", "i.cpy", "--report",
                                         "report", "--jobs", std::to_string(jobs)});
        const Outcome outcome = sxml(options);
        return {outcome.status, outcome.err, read_file("out"), read_file("rejects"),
                read_file("report")};
    }

    // Several times, with different numbers of processes.
    static void expect_same(const std::string& subcommand, const std::string& input,
                            const Words& options, unsigned seed) {
        const Traces alone = traces(subcommand, input, options, 1);
        for (const unsigned jobs : {2 + seed % 3, 5 + seed % 3}) {
            EXPECT_EQ(traces(subcommand, input, options, jobs), alone)
                << "seed " << seed << ", jobs " << jobs;
        }
    }
};

class Chance {
  public:
    explicit Chance(unsigned seed) : random_(seed) {}
    bool one_in(unsigned count) { return random_() % count == 0; }
    std::size_t below(std::size_t count) { return random_() % count; }
    template <class List>
    std::string of(const List& list) {
        return list[below(std::size(list))];
    }

  private:
    std::mt19937 random_;
};

// What a record may hold; `wild`: also what looks like the end of one.
std::string content(Chance& chance, bool is_wild) {
    static const std::string TAME[] = {"<code_id>AB</code_id>",    "<amount>12</amount>",
                                       "<amount>-7</amount>",      "<city>Bonn</city>",
                                       "<tag>a</tag><tag>b</tag>", "\n  ",
                                       "<!-- a comment -->",       "<city>K&#xF6;ln</city>"};
    static const std::string ODD[] = {
        "<amount>x</amount>",         "<city>far too long a name</city>",
        "<unknown>data</unknown>",    "<tag>a</tag><tag>b</tag><tag>c</tag>",
        "<code_id a='1'>C</code_id>", "<note>\r\n" + std::string(700, 'x') + "</note>"};
    static const std::string WILD[] = {"<!-- </item> -->", "<![CDATA[</item><item>]]>",
                                       "<?p </item>?>",    "<item><city>inner</city></item>",
                                       "<x a='</item>'/>", "<item >\t</item\n>"};
    std::string text;
    for (std::size_t i = chance.below(6); i > 0; --i) {
        text += chance.of(TAME);
        if (chance.one_in(12)) text += chance.of(ODD);
        if (is_wild && chance.one_in(30)) text += chance.of(WILD);
    }
    return text;
}

std::string beginning(Chance& chance) {
    static const std::string BEGINNINGS[] = {
        "",
        "",
        "<?xml version='1.0'?>\n<!-- </item> -->",
        "\xEF\xBB\xBF",
        "<?xml version='1.0' encoding='ISO-8859-1'?>\r\n",
        "<!DOCTYPE items [<!ELEMENT items ANY><!ATTLIST item kind CDATA 'k'>]>\n",
        "<!DOCTYPE items [<!ENTITY e '<city>X</city>'><!ENTITY f '&e;</item><item>'>]>",
        "<!DOCTYPE items SYSTEM 'items.dtd'>"};
    return chance.of(BEGINNINGS);
}

std::string document(Chance& chance) {
    static const std::string ENDS[] = {"\n", "<!-- </item> </items> -->", "<?end?>\n\n"};
    static const std::string FAULTS[] = {"<a></b>", "&none;", "</items>", "<item", "\x01", "]]>"};
    const bool is_wild = chance.one_in(2);
    const std::size_t records = 20 + chance.below(300);
    const std::size_t fault = chance.one_in(4) ? chance.below(records) : records;
    std::string text = beginning(chance);
    const bool has_entities = text.find("ENTITY") != std::string::npos;
    text += chance.one_in(2) ? "<items a='1'>" : "<items\n>";
    for (std::size_t i = 0; i < records; ++i) {
        const std::string name = chance.one_in(40) ? "other" : "item";
        text += "<" + name + ">" + content(chance, is_wild);
        if (has_entities && chance.one_in(5)) text += "&e;";
        text += "</" + name + ">" + (chance.one_in(2) ? "\n" : "");
        if (is_wild && chance.one_in(40)) text += "<!-- <item></item> -->";
        if (i == fault) text += chance.of(FAULTS);
    }
    return text + "</items>" + chance.of(ENDS);
}

const Words OPTIONS[] = {{},
                         {},
                         {"--quiet"},
                         {"--strict"},
                         {"--rejects", "rejects"},
                         {"--strict", "--rejects", "rejects"},
                         {"--strict", "--rejects", "rejects", "--max-rejects", "20"}};

TEST_F(JobsTest, DocumentsBecomeTheSameRecords) {
    const Words formats[] = {{},
                             {"--encoding", "cp037"},
                             {"--line"},
                             {"--record-format", "rdw"},
                             {"--record-format", "gnucobol", "--min-record-length", "9"},
                             {"--record-format", "bdw"},
                             {"--buffer", "keep"},
                             {"--from-record", "7", "--count", "50"}};
    for (unsigned seed = 0; seed < 40; ++seed) {
        Chance chance(seed);
        write_file("d.xml", document(chance));
        Words options = OPTIONS[chance.below(std::size(OPTIONS))];
        const Words& format = formats[chance.one_in(2) ? 0 : chance.below(std::size(formats))];
        options.insert(options.end(), format.begin(), format.end());
        expect_same("from-xml", "d.xml", options, seed);
    }
}

std::string record(Chance& chance) {
    std::string text = chance.of(std::vector<std::string>{"AB  ", "\xC3\xB6  ", "<&>'"});
    text += chance.of(std::vector<std::string>{"012", "00G", "99p"});
    text += chance.of(std::vector<std::string>{"Bonn  ", "      ", "K\xC3\xB6ln "}) + "a b ";
    if (chance.one_in(50)) text.replace(4, 3, "1x2");
    if (chance.one_in(150)) text[chance.below(text.size())] = '\x02';
    return text;
}

TEST_F(JobsTest, RecordsBecomeTheSameDocument) {
    for (unsigned seed = 0; seed < 30; ++seed) {
        Chance chance(seed);
        const std::size_t form = chance.below(4);
        std::string records;
        for (std::size_t i = chance.below(400); i > 0; --i) {
            const std::string bytes = record(chance);
            if (form == 2) records += std::string("\0\x15\0\0", 4);
            records += bytes;
            if (form == 1) records += "\n";
        }
        if (chance.one_in(5)) records += form == 2 ? std::string("\0\x15\0\0x", 5) : "cut";
        write_file("r.dat", records);
        Words options = OPTIONS[chance.below(std::size(OPTIONS))];
        const Words formats[] = {
            {}, {"--line"}, {"--record-format", "rdw"}, {"--from-record", "9"}};
        options.insert(options.end(), formats[form].begin(), formats[form].end());
        if (chance.one_in(4)) options.insert(options.end(), {"--count", "30"});
        if (chance.one_in(6)) options.insert(options.end(), {"--set", "SXML_ENCODING=UTF-8"});
        expect_same("to-xml", "r.dat", options, seed);
    }
}

// A conversion of a large document, seen from another process.
class RunningConversion {
  public:
    RunningConversion() {
        std::ofstream document("large.xml", std::ios::binary);
        document << "<items>";
        const std::string some(400, 'x');
        for (int i = 0; i < 40000; ++i) document << "<item><note>" << some << "</note></item>\n";
        document << "</items>";
        document.close();
        std::string program = SXML_BUILD_DIR "/bin/sxml";
        std::vector<std::string> words = {program, "from-xml", "large.xml", "out",    "-l",
                                          "i.cpy", "--jobs",   "3",         "--quiet"};
        std::vector<char*> arguments;
        for (std::string& word : words) arguments.push_back(word.data());
        arguments.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, 2, "err", O_WRONLY | O_CREAT | O_TRUNC, 0666);
        EXPECT_EQ(
            posix_spawn(&process_, program.c_str(), &actions, nullptr, arguments.data(), environ),
            0);
        posix_spawn_file_actions_destroy(&actions);
    }
    ~RunningConversion() { fs::remove("large.xml"); }

    pid_t process() const { return process_; }
    // Its workers, when all three are there.
    std::vector<pid_t> workers() const {
        for (int tries = 0; tries < 10000; ++tries) {
            const std::string number = std::to_string(process_);
            std::ifstream list("/proc/" + number + "/task/" + number + "/children");
            std::vector<pid_t> all;
            for (pid_t child = 0; list >> child;) all.push_back(child);
            if (all.size() == 3) return all;
            std::this_thread::sleep_for(std::chrono::microseconds(100));
        }
        return {};
    }
    // Exit status, or 128 and the signal.
    int wait() const {
        int status = 0;
        EXPECT_EQ(waitpid(process_, &status, 0), process_);
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }

  private:
    pid_t process_ = 0;
};

bool has_gone(pid_t process) {
    for (int tries = 0; tries < 1000 && kill(process, 0) == 0; ++tries) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return kill(process, 0) != 0;
}

TEST_F(JobsTest, NothingIsLeftWhenProcessesEnd) {
    const struct {
        bool is_worker;
        int signal;
        int status;
        const char* message;
    } ends[] = {{true, SIGKILL, 1, "sxml: a process that shared the work was ended by signal 9; "},
                {true, SIGTERM, 1, "sxml: a process that shared the work was ended by signal 15; "},
                {false, SIGTERM, 128 + SIGTERM, ""},
                {false, SIGINT, 128 + SIGINT, ""},
                {false, SIGKILL, 128 + SIGKILL, ""}};
    fs::create_directory("temporary");
    setenv("TMPDIR", "temporary", 1);
    write_file("out", "as it was");
    for (const auto& end : ends) {
        {
            const RunningConversion conversion;
            const std::vector<pid_t> workers = conversion.workers();
            ASSERT_EQ(workers.size(), 3U);
            kill(end.is_worker ? workers[1] : conversion.process(), end.signal);
            EXPECT_EQ(conversion.wait(), end.status);
            for (const pid_t worker : workers) EXPECT_TRUE(has_gone(worker)) << end.signal;
        }
        EXPECT_EQ(read_file("err").substr(0, std::string(end.message).size()), end.message);
        EXPECT_EQ(read_file("err").empty(), std::string(end.message).empty());
        EXPECT_EQ(read_file("out"), "as it was");
        EXPECT_TRUE(fs::is_empty("temporary"));
        if (end.signal == SIGKILL && !end.is_worker) continue;  // nobody could remove the new file
        EXPECT_EQ(files(), (Words{"err", "i.cpy", "out", "temporary"})) << end.signal;
    }
    unsetenv("TMPDIR");
}

// What a worker cannot do, the process itself does.
TEST_F(JobsTest, WithoutRoomForPartsOneProcessDoesTheWork) {
    std::string records;
    for (int i = 0; i < 500; ++i) records += "AB  012Bonn  a b ";
    write_file("r.dat", records);
    ASSERT_EQ(sxml({"to-xml", "r.dat", "d.xml", "-l", "i.cpy", "--jobs", "1"}).status, 0);
    const std::string program = SXML_BUILD_DIR "/bin/sxml";
    const Words to_xml = {"to-xml", "r.dat", "e.xml"};
    const Words from_xml = {"from-xml", "d.xml", "e.dat"};
    for (const Words& conversion : {to_xml, from_xml}) {
        Words words = {"env", "TMPDIR=none", program, "-l", "i.cpy", "--jobs", "3"};
        words.insert(words.begin() + 3, conversion.begin(), conversion.end());
        EXPECT_EQ(run(words).err, "");
    }
    EXPECT_EQ(read_file("e.xml"), read_file("d.xml"));
    EXPECT_EQ(read_file("e.dat"), records);
}

}  // namespace
