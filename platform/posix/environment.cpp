#include "platform/environment.h"

#include <cstdlib>

namespace platform {

const char* environment_variable(const char* name) {
    return std::getenv(name);
}

const char* trusted_environment_variable(const char* name) {
    return secure_getenv(name);
}

}  // namespace platform
