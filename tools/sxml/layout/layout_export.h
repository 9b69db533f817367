// A record layout for other programs.
#pragma once

#include <string>

#include "records/description.h"

namespace command {

// An object: name, record_length, min_record_length, and the items in the order of the source, with
// the keys that docs/command.md lists.
std::string layout_json(const records::Description& description);

// The items, a line for each, after a line with the names of the columns; values with commas,
// quotation marks or line ends in quotation marks.
std::string layout_csv(const records::Description& description);

}  // namespace command
