// Fetching a document over HTTP.
#pragma once

#include <string>

#include "host/runtime/runtime_api.h"

namespace host {

// Fetches a document whole and writes it to a descriptor. Result: empty, or why nothing was
// fetched, or not all of it; what was written by then has to be thrown away.
RUNTIME_API std::string fetch_document(const std::string& url, int descriptor);

}  // namespace host
