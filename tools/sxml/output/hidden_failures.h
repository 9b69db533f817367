// What went wrong where nobody could say so: the module goes on without what there was no memory
// for, and takes what of a document could not be read for its end.
#pragma once

namespace command {

// True when the host or the module did without something because memory was exhausted.
bool has_memory_failed();
// Throws std::bad_alloc in this case, and Failure when an input could not be read. To be called
// before a result counts as complete.
void check_host();

// Takes no memory.
void report_exhausted_memory();
// From now on report_exhausted_memory() calls `tell`, in a process whose end another one tells.
void report_exhausted_memory_by(void (*tell)());

}  // namespace command
