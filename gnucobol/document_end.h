// Whether a document is there to its end.
#pragma once

#include <string>

namespace gnucobol {

// False when the file lacks the end tag of its document element, as one does that was cut off
// between two records; a reader of records does not see that. True also when this cannot be told:
// for what is no regular file, or in an encoding that is not based on ASCII.
bool has_document_end(const std::string& path);

}  // namespace gnucobol
