// What Expat by itself says of the document in a file.
#pragma once

#include <optional>
#include <string>

#include "conversion/documents/document_check.h"

namespace command {

using documents::DocumentProblem;

// As in conversion/documents/document_check.h. Throw Failure when the file cannot be read.
std::optional<DocumentProblem> check_document(const std::string& file);
std::string declared_encoding(const std::string& file);

}  // namespace command
