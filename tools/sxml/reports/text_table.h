// Tables of text, aligned in columns.
#pragma once

#include <string>
#include <vector>

namespace command {

using Table = std::vector<std::vector<std::string>>;  // rows of cells, in UTF-8

// A line for each row, of which all have as many cells as `right_aligned`; no blanks at their ends.
std::string table_text(const Table& rows, const std::vector<bool>& right_aligned);

}  // namespace command
