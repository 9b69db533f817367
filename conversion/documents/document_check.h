// What Expat by itself says of a document.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace documents {

// Delivers the next bytes of a document, `size` of them but at its end. Result: how many.
using ReadDocument = std::function<std::size_t(char* buffer, std::size_t size)>;

struct DocumentProblem {
    std::uint64_t line;    // from 1
    std::uint64_t column;  // in bytes, from 1
    std::string text;
};

// Parses a document from beginning to end. Result: why it is not well-formed, not complete, or
// refused for entities that nest too deep; nothing when it is fine. Throws std::bad_alloc, and what
// `read` throws.
std::optional<DocumentProblem> check_document(const ReadDocument& read);

// The name of the encoding that the document's XML declaration gives; empty when there is none.
// Reads as far as the document element. Throws as check_document does.
std::string declared_encoding(const ReadDocument& read);

}  // namespace documents
