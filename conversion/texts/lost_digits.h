// Numbers that lose digits at their low end when a field takes them.
#pragma once

#include <string_view>

#include "host/record_description.h"

namespace conversion {

// Whether a text that `field` holds now, as a number, had decimals or low-order digits other than
// zero that the field has no room for. The text is a number that fits the field; its address is
// set. Floating-point fields hold the nearest number: true when the text has more digits than that
// gives back, or is too small for the field.
bool loses_low_digits(std::string_view text, const XfdDataDesc& field);

}  // namespace conversion
