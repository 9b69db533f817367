// Settings that tell which code is loaded or which files are used.
#pragma once

#include <string>

namespace gnucobol {

// The value of a setting; empty when it is not set, or when the program runs with rights that its
// user does not have (set-user-ID) and must not obey the user's environment.
std::string trusted_setting(const char* name);

// Whether documents may be fetched from the web: SXML_NETWORK does not say no.
bool may_fetch();

}  // namespace gnucobol
