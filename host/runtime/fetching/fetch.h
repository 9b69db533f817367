// Fetching a document over HTTP.
#pragma once

#include <string>

#include "host/runtime/runtime_api.h"

namespace host {

// Fetches a document whole and writes it to a descriptor. Result: empty, or why the document was
// not fetched completely; what has been written must then be discarded.
RUNTIME_API std::string fetch_document(const std::string& url, int descriptor);

}  // namespace host
