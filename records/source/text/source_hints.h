// What is likely wrong with the form of a source, where its errors look as if its contents were.
#pragma once

#include <string_view>
#include <vector>

#include "records/diagnostics.h"
#include "records/source/text/source_line.h"

namespace records {

// True for a text in EBCDIC: most of its letters, digits and blanks are such in that code only.
bool looks_like_ebcdic(std::string_view text);

// Adds notes to the errors: how to choose the format of a file whose lines do not agree on it, text
// beyond the columns of fixed format, marks there that are read as text, a comment's mark in column
// 8. `files`: all that were read.
void add_source_hints(const std::vector<ReadFile>& files, Diagnostics& diagnostics);

}  // namespace records
