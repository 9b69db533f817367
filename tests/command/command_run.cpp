#include "tests/command/command_run.h"

#include <fcntl.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;

namespace {

std::string contents(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void store(const std::string& name, const std::string& text) {
    std::ofstream(name, std::ios::binary) << text;
}

// Files that stand for a program's standard streams, outside the folder of the test.
struct Streams {
    std::string folder = (fs::temp_directory_path() / "sxml-run.XXXXXX").string();
    Streams() { EXPECT_NE(mkdtemp(folder.data()), nullptr); }
    ~Streams() { fs::remove_all(folder); }
    std::string name(const char* stream) const { return folder + "/" + stream; }
};

}  // namespace

Outcome run(const std::vector<std::string>& words, const std::string& input,
            const std::string& output) {
    const Streams streams;
    store(streams.name("in"), input);
    const std::string out = output.empty() ? streams.name("out") : output;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    const int create = O_WRONLY | O_CREAT | O_TRUNC;
    posix_spawn_file_actions_addopen(&actions, 0, streams.name("in").c_str(), O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, out.c_str(), create, 0666);
    posix_spawn_file_actions_addopen(&actions, 2, streams.name("err").c_str(), create, 0666);
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    pid_t process = 0;
    EXPECT_EQ(posix_spawnp(&process, arguments[0], &actions, nullptr, arguments.data(), environ), 0)
        << words[0];
    posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    EXPECT_EQ(waitpid(process, &status, 0), process);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status),
            output.empty() ? contents(out) : "", contents(streams.name("err"))};
}

const std::string CommandTest::EXAMPLES = SXML_SOURCE_DIR "/examples/";

void CommandTest::SetUp() {
    folder_ = (fs::temp_directory_path() / "sxml-test.XXXXXX").string();
    ASSERT_NE(mkdtemp(folder_.data()), nullptr);
    fs::current_path(folder_);
    setenv("SOURCE_DATE_EPOCH", "1795000000", 1);
}

void CommandTest::TearDown() {
    fs::current_path("/");
    fs::remove_all(folder_);
}

Outcome CommandTest::sxml(std::vector<std::string> words, const std::string& input,
                          const std::string& output) {
    words.insert(words.begin(), SXML_BUILD_DIR "/bin/sxml");
    return run(words, input, output);
}

void CommandTest::write_file(const std::string& name, const std::string& text) {
    store(name, text);
}

std::string CommandTest::read_file(const std::string& name) {
    return contents(name);
}

std::vector<std::string> CommandTest::files() {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(".")) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}
