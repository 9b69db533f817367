// Files without a name, which go when they are closed.
#pragma once

#include <string>

namespace gnucobol {

// Makes one in this folder, or, where that cannot be, in TMPDIR (without it in /tmp). `folder`:
// empty for TMPDIR at once. Result: a descriptor that the caller closes; -1 with the reason in
// errno.
int nameless_file(const std::string& folder);

// The name that what a descriptor of this process is of can be opened by.
std::string name_of_descriptor(int descriptor);

}  // namespace gnucobol
