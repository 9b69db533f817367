// Text form of record description trees, for comparison with expected texts.
#pragma once

#include <string>

#include "records/data_item.h"

namespace records {

// One line an item, indented by depth, with everything the source said about it.
std::string dump_tree(const RecordSource& source);

// The condition with a pair of parentheses around every operation.
std::string dump_condition(const Expression& expression);

}  // namespace records
