#include "gnucobol/runtime_settings.h"

#include <fcntl.h>
#include <strings.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <sstream>

#include "gnucobol/runtime.h"
#include "platform/posix/held_signals.h"

namespace gnucobol {

namespace {

// Standard output goes into a pipe while this lives: a pipe has room for some settings, and does
// not count as a file of which the size may be limited.
class CapturedOutput {
  public:
    CapturedOutput() {
        std::fflush(stdout);
        if (pipe2(pipe_.data(), O_CLOEXEC | O_NONBLOCK) == 0) output_ = dup(STDOUT_FILENO);
        if (output_ >= 0) dup2(pipe_[1], STDOUT_FILENO);
    }
    ~CapturedOutput() {
        restore();
        for (const int end : pipe_) {
            if (end >= 0) close(end);
        }
    }
    CapturedOutput(const CapturedOutput&) = delete;
    CapturedOutput& operator=(const CapturedOutput&) = delete;

    bool works() const { return output_ >= 0; }

    // What was written.
    std::string text() {
        restore();
        std::string text;
        std::array<char, 4096> part{};
        for (;;) {
            const ssize_t size = read(pipe_[0], part.data(), part.size());
            if (size <= 0) return text;
            text.append(part.data(), static_cast<std::size_t>(size));
        }
    }

  private:
    void restore() {
        if (output_ < 0) return;
        std::fflush(stdout);
        dup2(output_, STDOUT_FILENO);
        close(output_);
        output_ = -1;
    }

    std::array<int, 2> pipe_ = {-1, -1};
    int output_ = -1;
};

// The runtime shows its configuration and gives no other access to it.
std::string shown_configuration() {
    // The runtime's handler would wait for a lock that the runtime holds meanwhile.
    const platform::HeldSignals held;
    CapturedOutput output;
    if (!output.works()) return {};
    print_runtime_conf();
    return output.text();
}

std::string without_blanks(const std::string& text) {
    const std::size_t start = text.find_first_not_of(' ');
    if (start == std::string::npos) return {};
    return text.substr(start, text.find_last_not_of(' ') + 1 - start);
}

// The value of a setting, empty when there is none. A line is "origin: name : value", with the name
// in lower case when the value comes from a file; lines ": value" after it go on with the value.
std::string shown_value(const std::string& configuration, const std::string& name) {
    std::string value;
    bool is_found = false;
    std::istringstream lines(configuration);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t last = line.rfind(" : ");
        const std::size_t first = line.find(':');
        if (last == std::string::npos || first == std::string::npos) continue;
        const bool goes_on = first == last + 1;
        if (is_found && !goes_on) return value;
        if (!goes_on) is_found = without_blanks(line.substr(first + 1, last - first)) == name;
        if (is_found) value += without_blanks(line.substr(last + 3));
    }
    return value;
}

bool is_yes(const std::string& value) {
    return strncasecmp(value.c_str(), "y", 1) == 0 || strncasecmp(value.c_str(), "t", 1) == 0 ||
           strcasecmp(value.c_str(), "on") == 0 || value == "1";
}

// A file's settings cannot change while the program runs.
const FileSettings& settings_of_file() {
    static const FileSettings settings = [] {
        const std::string configuration = shown_configuration();
        return FileSettings{shown_value(configuration, "file_path"),
                            is_yes(shown_value(configuration, "env_mangle"))};
    }();
    return settings;
}

}  // namespace

FileSettings file_settings() {
    const char* const folder = std::getenv("COB_FILE_PATH");
    const char* const mangle = std::getenv("COB_ENV_MANGLE");
    FileSettings settings = settings_of_file();
    if (folder != nullptr && *folder != '\0') settings.folder = folder;
    if (mangle != nullptr && *mangle != '\0') settings.mangles_names = is_yes(mangle);
    return settings;
}

}  // namespace gnucobol
