// The host's trace: lines of text, indented by the running sum of the steps given with them.
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/export.h"

// The levels in use; a higher one takes in all below it.
enum HostTraceLevel : std::int16_t {
    HOST_TRACE_OFF = 0,
    HOST_TRACE_ENTRIES = 1,       // entries of the file interface
    HOST_TRACE_DATA = 2,          // moving field data
    HOST_TRACE_SEARCH = 3,        // finding an element
    HOST_TRACE_SUBSCRIPTS = 4,    // comparing array subscripts
    HOST_TRACE_PARSER = 6,        // parser driving, DOCTYPE
    HOST_TRACE_DECLARATIONS = 7,  // entity and XML declarations
    HOST_TRACE_ELEMENTS = 8,
    HOST_TRACE_CONTENT = 9,  // character data, comments
    HOST_TRACE_MODELS = 10   // content models, element texts
};

// The trace level. Callers test it before they format anything.
// NOLINTNEXTLINE(bugprone-dynamic-static-initializers): declared here, initialised by the host
HOST_DATA std::int16_t host_trace_on;

// Writes one trace line when `level` is at most host_trace_on. `step` moves the indentation: +1 on
// the head line of an operation (which itself stands at the old indentation), -1 on the line that
// ends it, 0 in between; it counts whatever the level. A line end at the end of the formatted text
// is not doubled.
HOST_API void host_trace(std::int32_t step, int level, const char* format, ...) HOST_PRINTF(3, 4);

// Writes formatted text to the trace as it stands: no indentation, no level, no line end added.
HOST_API void host_trace_printf(const char* format, ...) HOST_PRINTF(1, 2);

// Dumps `length` bytes to the trace as hexadecimal and characters. The first two arguments are 0.
HOST_API void host_trace_dump(int reserved1, int reserved2, const void* data, std::size_t length);
