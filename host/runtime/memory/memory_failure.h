// Exhausted memory that the host, or the module, could not report to its caller.
#pragma once

#include "host/runtime/memory/memory_report.h"

namespace host {

// Notes that a service did not have the memory it needed.
void note_memory_failure() noexcept;

// True when some service did not have the memory it needed since this was last asked; asking
// forgets it. The module goes on without a comment, a declaration or a setting that there was no
// memory for: a program that is to lose nothing asks before it makes use of a result.
RUNTIME_API bool take_memory_failure();

}  // namespace host
