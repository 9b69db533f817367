// Versions of the libraries that the host uses, as the running process has them.
#pragma once

#include <string>

#include "host/runtime/runtime_api.h"

namespace host {

// Of PCRE2: "10.42 2022-12-11".
RUNTIME_API std::string regex_library_version();

// The name of what fetches web addresses, loaded when that is needed: "libcurl".
RUNTIME_API const char* transfer_library();

}  // namespace host
