// Numbers in record fields: exact conversion between fields, text and decimals.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "host/record_description.h"

namespace records {

// An exact decimal number: digits (most significant first, no NUL) times ten to the power of scale.
// Floating-point fields of any magnitude are held as their shortest decimal form.
struct Decimal {
    static constexpr int MAX_DIGITS = 400;
    std::array<std::uint8_t, MAX_DIGITS> digits;  // values 0 to 9; only the first `count` are set
    int count = 0;                                // digits in use; 0 means zero
    int scale = 0;                                // power of ten of the last digit
    bool negative = false;                        // may be set on zero
};

// Reads the number in a numeric field (data.address set, type one of the numeric FieldType codes).
// Never reads outside the field. False when the field holds no valid number; `out` is then what the
// defined repair gives (see docs/numbers.md) and one data exception is counted.
bool decode_field(const XfdDataDesc& data, Decimal& out);

// Stores a number in a numeric field, cutting decimals that do not fit and keeping the low-order
// digits when there are too many. False (and one data exception counted) when high-order digits
// or the sign of a number other than zero were lost, or when the descriptor is of no numeric field
// (nothing is then stored).
bool encode_field(const Decimal& number, const XfdDataDesc& data);

// Reads a number from text: blanks around, sign, digits, decimal point, exponent. False (and one
// data exception counted, value zero) when the text is not a number.
bool parse_number(std::string_view text, Decimal& out);

// -1, 0 or 1, comparing values exactly (a negative zero equals zero).
int compare(const Decimal& first, const Decimal& second);

// Data exceptions counted on this thread since the start or the last reset.
std::uint64_t data_exceptions();
void reset_data_exceptions();

}  // namespace records

// Converts between a field and text; see host/record_description.h. Result: 1, or 0 when the value
// was no valid number or did not fit.
extern "C" int Qconvert(XfdDataDesc* destination, const XfdDataDesc* source, int mode);
