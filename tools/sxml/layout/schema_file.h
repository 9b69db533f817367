// The XML Schema of a layout, written by the module.
#pragma once

#include "host/runtime/module.h"
#include "tools/sxml/output/atomic_output.h"

namespace command {

// Has the module write the schema of the bound description into `schema`; the document that it
// writes meanwhile is discarded. Leaves SXML_CREATE_STYLE at SCHEMA, SXML_CREATE_SCHEMA at yes and
// SXML_SCHEMA_NAME at the name written. Throws Failure when the file is not written in full.
void write_schema_file(const host::Module& module, const AtomicOutput& schema);

}  // namespace command
