#include "fsi/xml/handlers/trace_message.h"

#include <cstdarg>
#include <cstdio>

namespace {

char message_buffer[512];

}  // namespace

void trace_message(int step, int level, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    // The analyser loses sight of va_start.
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
    std::vsnprintf(message_buffer, sizeof message_buffer, format, arguments);
    va_end(arguments);
    host_trace(step, level, "%s", message_buffer);
}

void trace_given(int level, const char* format, const char* text) {
    if (!text) return;
    // The format is one of the handlers' own literals with a single %s.
    // NOLINTNEXTLINE(clang-diagnostic-format-nonliteral)
    std::snprintf(message_buffer, sizeof message_buffer, format, text);
    host_trace(0, level, "%s", message_buffer);
}

const char* keep_error_text(const char* text) {
    std::snprintf(message_buffer, sizeof message_buffer, "%s", text ? text : "");
    return message_buffer;
}
