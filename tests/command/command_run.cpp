#include "tests/command/command_run.h"

#include <fcntl.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

namespace fs = std::filesystem;

Outcome run(const std::vector<std::string>& words, const std::string& input,
            const std::string& output) {
    // What stands for a program's standard streams is outside the folder of the test.
    const ScratchFolder streams;
    write_file(streams.file("in"), input);
    const std::string out = output.empty() ? streams.file("out") : output;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    const int create = O_WRONLY | O_CREAT | O_TRUNC;
    posix_spawn_file_actions_addopen(&actions, 0, streams.file("in").c_str(), O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, out.c_str(), create, 0666);
    posix_spawn_file_actions_addopen(&actions, 2, streams.file("err").c_str(), create, 0666);
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
            output.empty() ? read_file(out) : "", read_file(streams.file("err"))};
}

std::string command_under_test() {
    const char* const other = std::getenv("SXML_COMMAND");
    return other != nullptr ? other : SXML_BUILD_DIR "/bin/sxml";
}

const std::string CommandTest::EXAMPLES = SXML_SOURCE_DIR "/examples/";

void CommandTest::SetUp() {
    folder_ = std::make_unique<ScratchFolder>();
    fs::current_path(folder_->path());
    setenv("SOURCE_DATE_EPOCH", "1795000000", 1);
}

void CommandTest::TearDown() {
    fs::current_path("/");
    folder_.reset();
}

Outcome CommandTest::sxml(std::vector<std::string> words, const std::string& input,
                          const std::string& output) {
    words.insert(words.begin(), command_under_test());
    return run(words, input, output);
}

std::vector<std::string> CommandTest::files() {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(".")) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}
