// The variables of the process's environment.
#pragma once

namespace platform {

// The value, valid until the environment is changed; null when there is none.
const char* environment_variable(const char* name);
// The same for what names files or code: null, too, when the program runs with rights that its user
// does not have (set-user-ID).
const char* trusted_environment_variable(const char* name);

}  // namespace platform
