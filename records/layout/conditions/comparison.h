// How a comparison is made, and what its literal says.
#pragma once

#include <string>

#include "records/layout/model.h"

namespace records {

// The value of a hexadecimal digit in upper case; -1 for another character.
int hex_value(char c);
// The bytes that pairs of hexadecimal digits stand for.
std::string bytes_of_hex(const std::string& digits);
// The byte that a figurative constant consists of; -1 when the name is not one.
int figurative_byte(const std::string& name, bool ebcdic);
// A sign, digits and at most one point.
bool is_number(const std::string& text);

bool is_numeric(const Operand& item);
bool is_display(const Operand& item);
// True when both sides are compared as numbers; otherwise their characters are compared.
bool compares_numbers(const Test& test);
// True for a number that is compared with a text by the digits of its picture, without the sign.
bool shows_digits(const Operand& item);

}  // namespace records
