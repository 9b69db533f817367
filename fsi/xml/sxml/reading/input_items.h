// What reading needs besides the description's items. Worked out once when a file is opened: which
// group encloses each item, and the order in which fields are filled. For each record anew: its
// elements.
#pragma once

#include <cstdint>

#include "fsi/xml/handlers/records/record_tree.h"
#include "fsi/xml/sxml/reading/record_index.h"
#include "host/record_description.h"

// The element that an item was given in the records with the tree's links of that number.
struct KnownElement {
    std::uint64_t record;
    std::uint32_t element;  // 0: there is none
    bool fits;              // it was looked at and does, ...
    std::int8_t match;      // ... with tables matched so (HostTableMatch)
};

struct InputItems {
    const XfdItem* items;        // the description's
    KnownElement* known;         // per item
    std::int32_t* enclosing;     // per item: the nearest item before it of a lower level, or -1
    std::int32_t* fields;        // fields by condition, and by place among those of one condition
    std::int32_t field_count;    // groups and fields of conditions out of range are left out
    std::uint32_t* names;        // per item: the number of its name in the tree
    RecordTree tree;             // the record being read
    RecordIndex record_index;    // of its elements
    std::int32_t text_encoding;  // of their texts
};

// Null when memory is exhausted. Released with free_input_items.
InputItems* new_input_items(const Xfd& xfd);
void free_input_items(InputItems* items);
