// The module as the command uses it, and its write failures.
#pragma once

#include <initializer_list>

#include "host/runtime/module.h"
#include "tools/sxml/output/atomic_output.h"

namespace command {

// Loads the module, which declares its settings. Throws Failure.
const host::Module& load_module();

// Throws Failure when something that the module has written so far could not be stored (a full
// disk, say). `outputs` are those that were being written, so that the message gives the name that
// the user knows.
void check_written(std::initializer_list<const AtomicOutput*> outputs);

// Writes a document without records for the bound description. Throws Failure.
void write_empty_document(const host::Module& module, const AtomicOutput& output);

}  // namespace command
