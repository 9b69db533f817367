// What --version prints.
#pragma once

#include <string>

namespace command {

// "sxml N.N.N", and below it the libraries that this process runs with.
std::string version_text();

}  // namespace command
