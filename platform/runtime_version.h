// Which runtime library of C the program runs with.
#pragma once

#include <string>

namespace platform {

struct RuntimeVersion {
    std::string name;
    std::string version;
};

RuntimeVersion c_runtime_version();

}  // namespace platform
