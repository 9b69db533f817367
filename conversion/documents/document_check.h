// The verdict of Expat alone on a document.
#pragma once

#include <string>

#include "conversion/problem.h"

namespace conversion {

// Parses the document in a file from beginning to end. A problem of Cause::document, with line and
// column, when it is not well-formed, not complete, or refused for entities that nest too deep;
// another when it cannot be read. `shown_name` is what problems call it. Throws std::bad_alloc.
Done check_document(const std::string& file, const std::string& shown_name);

// The name of the encoding that the document's XML declaration gives; empty when there is none.
// Reads as far as the document element. Throws std::bad_alloc.
Result<std::string> declared_encoding(const std::string& file);

}  // namespace conversion
