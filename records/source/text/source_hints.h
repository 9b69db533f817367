// What is likely wrong with the form of a source, where its errors look as if its contents were.
#pragma once

#include <string_view>

#include "records/copybook.h"
#include "records/diagnostics.h"

namespace records {

// True for a text in EBCDIC: most of its letters, digits and blanks are such in that code only.
bool looks_like_ebcdic(std::string_view text);

// Adds notes to the errors: text beyond the columns of fixed format, a comment's mark in column 8.
void add_source_hints(SourceFormat format, Diagnostics& diagnostics);

}  // namespace records
