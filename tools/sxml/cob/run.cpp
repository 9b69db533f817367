#include "tools/sxml/cob/run.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "conversion/formats/byte_sink.h"
#include "conversion/formats/byte_source.h"
#include "tools/sxml/failure.h"

namespace command::cob {

namespace {

// What a program does with its descriptors before it starts.
class FileActions {
  public:
    FileActions() { posix_spawn_file_actions_init(&actions_); }
    ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    void open(int descriptor, const char* file) {
        constexpr mode_t own = 0600;
        posix_spawn_file_actions_addopen(&actions_, descriptor, file, O_WRONLY | O_CREAT | O_TRUNC,
                                         own);
    }
    const posix_spawn_file_actions_t* get() const { return &actions_; }

  private:
    posix_spawn_file_actions_t actions_{};
};

platform::TemporaryFolder new_folder() {
    auto folder = platform::TemporaryFolder::create();
    if (!folder) fail_file(platform::temporary_folder(), errno);
    return *std::move(folder);
}

}  // namespace

int run_program(const std::vector<std::string>& words, const std::string& errors) {
    std::vector<std::string> copies = words;
    std::vector<char*> arguments;
    arguments.reserve(copies.size() + 1);
    for (std::string& word : copies) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    FileActions actions;
    if (!errors.empty()) actions.open(STDERR_FILENO, errors.c_str());
    pid_t child = 0;
    const int error =
        posix_spawnp(&child, arguments[0], actions.get(), nullptr, arguments.data(), environ);
    if (error != 0) {
        fail(words[0] + " cannot be run: " + system_error_text(error) +
             (words[0] == "cobc" ? "; it comes with GnuCOBOL (package gnucobol3 or gnucobol4)"
                                 : ""));
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) fail(words[0] + " cannot be waited for: " + system_error_text(errno));
    }
    if (WIFSIGNALED(status)) {
        fail(words[0] + " was ended by a signal: " + strsignal(WTERMSIG(status)));
    }
    return WEXITSTATUS(status);
}

std::string text_of(const std::string& file) {
    auto source = conversion::ByteSource::open(file);
    if (!source && source.problem().cause == conversion::Cause::not_found) return {};
    conversion::ByteSource opened = value_of(std::move(source));
    return value_of(conversion::read_all(opened));
}

WorkFolder::WorkFolder() : folder_(new_folder()) {}

WorkFolder::~WorkFolder() {
    std::error_code error;
    std::filesystem::remove_all(folder_.name(), error);
}

std::string WorkFolder::write(const std::string& name, std::string_view text) const {
    std::string path = file(name);
    conversion::ByteSink sink = value_of(conversion::ByteSink::open(path));
    check(sink.write(text.data(), text.size()));
    check(sink.close());
    return path;
}

}  // namespace command::cob
