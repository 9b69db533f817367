// Sizes and offsets of data items.
#pragma once

#include "records/layout/node.h"

namespace records {

// Builds the working tree of one record and places every item in it: usage and sign inherited from
// groups, sizes of every usage, slack bytes, tables at their maximum, redefinitions. Null after an
// error that leaves nothing to work with.
std::unique_ptr<Node> place_record(const DataItem& record, const LayoutOptions& options,
                                   Diagnostics& diagnostics);

// Display name of an item in messages: its name, or FILLER.
std::string item_name(const DataItem& item);

}  // namespace records
