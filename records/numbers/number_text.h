// Numbers as text: a sign, digits and a decimal point, in plain notation.
#pragma once

#include <span>
#include <string_view>

#include "records/numbers.h"

namespace records::numbers {

// Reads a number; the decimal point is "." or `point`. False and zero when the text is not a
// number; false and the low-order MAX_DIGITS digits when its integer part has more than these.
bool parse_text(std::string_view text, char point, Decimal& out);

// Writes a number with exactly `decimals` decimals (lower digits are cut), blanks filling the rest.
// When it is too long, the low-order digits of the integer part stay, then the high-order decimals.
// False when integer digits or the sign did not fit.
bool write_fixed(const Decimal& number, int decimals, char point, std::span<char> out);

// Writes a number with as many decimals as it has, rounded to fit; all nines, and the result false,
// when the integer part does not fit.
bool write_shortest(const Decimal& number, char point, std::span<char> out);

}  // namespace records::numbers
