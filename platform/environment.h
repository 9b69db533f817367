// The variables of the process's environment.
#pragma once

namespace platform {

// The value, valid until the environment is changed; null when there is none.
const char* environment_variable(const char* name);

}  // namespace platform
