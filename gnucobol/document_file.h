// What can be told of a document from the beginning and the end of its file.
#pragma once

#include <string>

namespace gnucobol {

// False when the file lacks the end tag of its document element, as one does that was cut off
// between two records; a reader of records does not see that. True also when this cannot be told:
// for what is no regular file, or in an encoding that is not based on ASCII.
bool has_document_end(const std::string& path);

// True when the document says that it is in ISO-8859-1: its texts come in that encoding then, and
// in UTF-8 otherwise. True also when this cannot be told.
bool is_latin1_document(const std::string& path);

}  // namespace gnucobol
