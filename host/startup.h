// What the module asks the host once, when it is initialised.
#pragma once

#include <cstdint>

#include "host/export.h"

// Receives the arguments of the module's initialisation entry unchanged: the two that slot 0 of the
// dispatch table has in this interface.
// Result: non-zero when the host supports text encodings, so that the module converts its output
// to the configured encoding's rules; 0 otherwise.
HOST_API int host_plugin_query(void* first, std::int32_t* version);
