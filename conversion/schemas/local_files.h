// Files that schemas and document types name.
#pragma once

#include <string>

#include "conversion/problem.h"

namespace conversion {

// A location as the name of a file, seen from the folder of the file that names it.
std::string file_at(const std::string& location, const std::string& from);

// A problem when it cannot be read as a part of a description: pipes and devices might never end,
// and 64 MiB are enough.
Done check_part(const std::string& file);

// Both; a problem for addresses on the web, too.
Result<std::string> local_file(const std::string& location, const std::string& from);

}  // namespace conversion
