// What reading needs to know of a description besides its items, worked out once when a file is
// opened: which group encloses each item, and the order in which fields are filled.
#pragma once

#include <cstdint>

#include "fsi/xml/sxml/record_index.h"
#include "host/record_description.h"

struct InputItems {
    std::int32_t* enclosing;   // per item: the nearest item before it of a lower level, or -1
    std::int32_t* fields;      // fields by condition, and by place among those of one condition
    std::int32_t field_count;  // groups and fields of conditions out of range are left out
    RecordIndex record_index;  // of the record being read
};

// Null when memory is exhausted. Released with free_input_items.
InputItems* new_input_items(const Xfd& xfd);
void free_input_items(InputItems* items);
