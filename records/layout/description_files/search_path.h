// Where record descriptions and what they copy are looked for.
#pragma once

#include <string>
#include <vector>

namespace records {

// The folders of SXML_PATH, separated as the system's lists of folders are, an empty one being the
// current folder; empty when the variable is not set.
std::vector<std::string> search_path();

}  // namespace records
