// Sizes and offsets of data items.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "records/layout/node.h"

namespace records {

// Builds the working tree of one record and places every item in it: usage and sign inherited from
// groups, sizes of every usage, slack bytes, tables at their maximum, redefinitions. Null after an
// error that leaves nothing to work with.
std::unique_ptr<Node> place_record(const DataItem& record, const LayoutOptions& options,
                                   Diagnostics& diagnostics);

// A table with DEPENDING ON that is not what ends its record.
struct MovingTable {
    const Node* table;
    const Node* next;    // the item that it moves; or null
    const Node* around;  // the innermost table whose entries then differ in length; or null
};
std::vector<MovingTable> moving_tables(const Node& record);

// Display name of an item in messages: its name, or FILLER.
std::string item_name(const DataItem& item);

}  // namespace records
