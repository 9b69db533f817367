// Failures of the command: a message for a person, and the exit status that goes with it.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "conversion/problem.h"

namespace command {

constexpr int EXIT_FAILED = 1;
constexpr int EXIT_USAGE = 2;

// Ends the command: main() prints "sxml: " and the message, and exits with the status. An empty
// message means that everything has been said already.
class Failure : public std::runtime_error {
  public:
    Failure(const std::string& message, int status)
        : std::runtime_error(message), status_(status) {}
    int status() const { return status_; }

  private:
    int status_;
};

// The data, a file or the machine is at fault. Messages become one line.
[[noreturn]] void fail(const std::string& message);
// The command line is at fault.
[[noreturn]] void fail_usage(const std::string& message);
// "NAME: what the system says about `error`".
[[noreturn]] void fail_file(const std::string& name, int error);

// The problem in full; with Cause::usage and Cause::setting the command line is at fault.
[[noreturn]] void fail(const conversion::Problem& problem);
// The value of what was done, or its failure.
template <class Value>
Value value_of(conversion::Result<Value> result) {
    if (!result) fail(result.problem());
    return *std::move(result);
}
// Fails when something was not done.
inline void check(const conversion::Done& problem) {
    if (problem) fail(*problem);
}

std::string system_error_text(int error);
// Prints a complete text on standard error, even when that is non-blocking.
void say(std::string_view text);
// Prints "sxml: " and the message of what ends the run.
void say_failure(const std::string& message);
// Prints "sxml: warning: " and the message, as one line, on standard error.
void warn(const std::string& message);

}  // namespace command
