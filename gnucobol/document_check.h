// Where a document is damaged.
#pragma once

#include <string>

namespace gnucobol {

// Line, column and what is wrong there, as one text; empty when nothing is wrong or the file cannot
// be read. Reads the document from its beginning.
std::string find_damage(const std::string& file);

}  // namespace gnucobol
