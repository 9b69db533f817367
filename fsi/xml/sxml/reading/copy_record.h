// Taking a record over from the element tree.
#pragma once

#include <cstdint>

#include "fsi/xml/handlers/records/record_tree.h"

// Copies an element with everything below it into an empty record tree. Its texts are as they are
// to be moved. False when memory is exhausted.
bool copy_record(RecordTree& tree, std::uint32_t element);
