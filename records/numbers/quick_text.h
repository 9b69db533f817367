// The most frequent numbers as text, without a decimal in between.
#pragma once

#include "host/record_description.h"

namespace records::numbers {

// Writes what reading the field `source` and writing its number to `text` would give, for a
// DISPLAY, packed or binary field that holds a valid whole number of at most 64 bits and has as
// many decimals as the text, when the text has room for it. False otherwise: nothing is written
// then.
bool write_quickly(const XfdDataDesc& source, const XfdDataDesc& text);

}  // namespace records::numbers
