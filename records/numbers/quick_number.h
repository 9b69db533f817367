// The most frequent texts as numbers, without a decimal in between.
#pragma once

#include "host/record_description.h"

namespace records::numbers {

// Stores in the field `target` what parsing `text` and storing its number would, for a text of
// nothing but a minus sign perhaps, at most 18 digits and perhaps a full stop among them, and a
// DISPLAY, packed or binary field that has a place for all of its digits and its sign. False
// otherwise: nothing is stored then.
bool store_quickly(const XfdDataDesc& text, const XfdDataDesc& target);

}  // namespace records::numbers
