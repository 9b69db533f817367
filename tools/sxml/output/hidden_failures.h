// Failures that the module could not report: it continues without data for which memory was
// missing, and takes a read failure for the end of the document.
#pragma once

namespace command {

// True when the host or the module did without something because memory was exhausted.
bool has_memory_failed();
// Throws std::bad_alloc in this case, and Failure when an input could not be read. To be called
// before a result counts as complete.
void check_host();

// Takes no memory.
void report_exhausted_memory();
// From now on report_exhausted_memory() calls `tell`, in a process whose failure another one
// reports.
void report_exhausted_memory_by(void (*tell)());

}  // namespace command
