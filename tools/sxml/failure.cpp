#include "tools/sxml/failure.h"

#include <cstdio>
#include <system_error>

#include "platform/descriptors.h"
#include "tools/sxml/reports/progress.h"
#include "tools/sxml/terminal.h"

namespace command {

void fail(const std::string& message) {
    throw Failure(conversion::shown_in_line(message), EXIT_FAILED);
}

void fail_usage(const std::string& message) {
    throw Failure(conversion::shown_in_line(message), EXIT_USAGE);
}

void fail(const conversion::Problem& problem) {
    const bool is_usage =
        problem.cause == conversion::Cause::usage || problem.cause == conversion::Cause::setting;
    throw Failure(message_of(problem), is_usage ? EXIT_USAGE : EXIT_FAILED);
}

void fail_file(const std::string& name, int error) {
    fail(name + ": " + system_error_text(error));
}

std::string system_error_text(int error) {
    return std::error_code(error, std::generic_category()).message();
}

namespace {

// A failure here cannot be reported.
void print(std::string_view text, bool is_failure) {
    clear_progress();
    std::fflush(stderr);
    if (!has_colours()) {  // also when memory is exhausted
        platform::write_whole(platform::STANDARD_ERROR, text.data(), text.size());
        return;
    }
    const std::string shown = coloured(text, is_failure);
    platform::write_whole(platform::STANDARD_ERROR, shown.data(), shown.size());
}

}  // namespace

void say(std::string_view text) {
    print(text, false);
}

void say_failure(const std::string& message) {
    print("sxml: " + message + "\n", true);
}

void warn(const std::string& message) {
    say("sxml: warning: " + conversion::shown_in_line(message) + "\n");
}

}  // namespace command
