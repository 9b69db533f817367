// Where the files of this installation lie that are found at run time.
#pragma once

#include <string>

#include "host/runtime/runtime_api.h"

namespace host {

// The path of a file that belongs to the host library: beside it, as in a build, or in the folder
// `sxml` beside it, as installed. When it is in neither place, the path beside the library.
// Throws std::bad_alloc.
RUNTIME_API std::string library_file(const std::string& name);

}  // namespace host
