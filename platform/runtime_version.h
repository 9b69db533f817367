// The C runtime library of the process.
#pragma once

#include <string>

namespace platform {

struct RuntimeVersion {
    std::string name;
    std::string version;
};

RuntimeVersion c_runtime_version();

}  // namespace platform
