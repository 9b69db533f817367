// What a document holds, or refers to, that reading does not give.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "conversion/problem.h"

namespace conversion {

// One kind of such losses.
struct DocumentLoss {
    const char* things;  // in the plural, for a sum
    std::uint64_t count = 0;
    std::vector<Problem> first = {};  // the first ten, with their place
};

struct DocumentLosses {
    // References to entities outside of the document, or declared outside of it: their text is
    // missing in what is read.
    DocumentLoss entities{"references to entities that are not read"};
    // Characters that references put into the texts and attributes of a document in ISO-8859-1,
    // which are kept in that.
    DocumentLoss characters{"characters that a document in ISO-8859-1 cannot keep"};

    std::array<const DocumentLoss*, 2> all() const { return {&entities, &characters}; }
};

// Looks for them in the document in a file. Only the beginning is read of a document that declares
// no entity outside of it, has no external DTD and is not in ISO-8859-1; of one in ISO-8859-1
// without character references, only the bytes. `shown_name` is what problems call it. Errors in
// the document are not reported here: the search ends there. A problem when it cannot be read.
// Throws std::bad_alloc.
Result<DocumentLosses> find_document_losses(const std::string& file, const std::string& shown_name);

}  // namespace conversion
