// Numbers as people write them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace conversion {

// What a number's field is like.
struct NumberField {
    int digits;
    int scale;               // power of ten of the last digit
    bool has_decimal_comma;  // the program says DECIMAL-POINT IS COMMA
};

// The number meant by a text in another notation, when it is unambiguous:
// the date 2026-11-23 is 20261123 in a field of eight digits without decimals; 12,50 is 12.50 when
// the program's decimal point is a comma and the text has no full stop. Nothing for all others.
std::optional<std::string> meant_number(std::string_view text, const NumberField& field);

}  // namespace conversion
