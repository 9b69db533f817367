// What Expat by itself says of a document.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace command {

struct DocumentProblem {
    std::uint64_t line;    // from 1
    std::uint64_t column;  // in bytes, from 1
    std::string text;
};

// Parses a document from beginning to end. Result: why it is not well-formed or not complete;
// nothing when it is fine. Throws Failure when it cannot be read.
std::optional<DocumentProblem> check_document(const std::string& file);

// The name of the encoding that the document's XML declaration gives; empty when there is none.
std::string declared_encoding(const std::string& file);

}  // namespace command
