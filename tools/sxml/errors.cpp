#include "tools/sxml/errors.h"

#include <cstdio>
#include <system_error>

namespace command {

void fail(const std::string& message) {
    throw Failure(message, EXIT_FAILED);
}

void fail_usage(const std::string& message) {
    throw Failure(message, EXIT_USAGE);
}

void fail_file(const std::string& name, int error) {
    fail(name + ": " + system_error_text(error));
}

std::string system_error_text(int error) {
    return std::error_code(error, std::generic_category()).message();
}

void warn(const std::string& message) {
    std::fprintf(stderr, "sxml: warning: %s\n", message.c_str());
}

}  // namespace command
