// The list of processing instructions.
#pragma once

#include <cstdint>

#include "fsi/xml/handlers/xml_parser.h"
#include "host/arrays.h"

// Puts an instruction into the list so that it takes `index` (HOST_ARRAY_END: at the end), creating
// the list when there is none. `source` is the path that the memory is accounted for under.
// False when memory is exhausted; the list is then as it was.
bool insert_instruction(XmlParser& parser, std::uint32_t index, const char* target,
                        const char* data, const char* source);
