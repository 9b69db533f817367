#include "platform/environment.h"

#include <cstdlib>

namespace platform {

const char* environment_variable(const char* name) {
    return std::getenv(name);
}

}  // namespace platform
