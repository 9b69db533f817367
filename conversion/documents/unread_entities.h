// Texts that a document takes from elsewhere, which are never read.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "conversion/problem.h"

namespace conversion {

// References to entities outside of the document, or declared outside of it: their text is missing
// in what is read.
struct UnreadEntities {
    std::uint64_t count = 0;
    std::vector<Problem> first;  // the first ten, with their place
};

// Looks for them in the document in a file. Only the beginning is read of a document that declares
// none and has no external DTD. `shown_name` is what problems call it. Errors in the document are
// not reported here: the search ends there. A problem when it cannot be read. Throws
// std::bad_alloc.
Result<UnreadEntities> find_unread_entities(const std::string& file, const std::string& shown_name);

}  // namespace conversion
