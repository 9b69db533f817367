// Setting the trace at run time. At the start it comes from the environment: SXML_TRACE is the
// level, SXML_TRACE_FILE the file (default: standard error).
#pragma once

#include <string>

#include "host/runtime/runtime_api.h"

namespace host {

// Sets level and file (emptied first; an empty name means standard error) and takes the indentation
// back to none. False when the file cannot be opened: the trace then goes to standard error.
RUNTIME_API bool set_trace(int level, const std::string& file);

// True when lines could not be written to the file, or to standard error, which was said there
// once.
RUNTIME_API bool has_trace_failed();

}  // namespace host
