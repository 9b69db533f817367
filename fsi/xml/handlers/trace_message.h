// Trace lines with values in them, and the text of the last parse error: both live in one buffer of
// the module's, which every parser shares.
#pragma once

#include "host/export.h"
#include "host/trace.h"

// Formats a trace line, cut to the buffer, and writes it. Callers test host_trace_on first.
void trace_message(int step, int level, const char* format, ...) HOST_PRINTF(3, 4);

// Traces `format` with a text, and nothing when there is no text.
void trace_given(int level, const char* format, const char* text);

// Keeps a copy of an error's text. Result: the copy, valid until the next formatted trace line or
// error.
const char* keep_error_text(const char* text);
