// What Expat by itself says of the document in a file. What comes through a pipe is gone, and
// nothing is said of it.
#pragma once

#include <string>

namespace gnucobol {

// Line, column and what is wrong there, as one text; empty when nothing is wrong or the file cannot
// be read. Reads the document from its beginning.
std::string find_damage(const std::string& file);

// True when the document says that it is in ISO-8859-1: its texts come in that encoding then, and
// in UTF-8 otherwise. True also when this cannot be told.
bool is_latin1_document(const std::string& file);

}  // namespace gnucobol
