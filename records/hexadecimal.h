// Bytes as hexadecimal digits, two a byte.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace records {

// The digits of all bytes, 0 to 9 and A to F, with `gap` between those of two bytes.
std::string hexadecimal(std::span<const std::uint8_t> bytes, std::string_view gap = {});
std::string hexadecimal(std::string_view bytes, std::string_view gap = {});

// True for a text that is pairs of digits, letters of either case. So is the empty one.
bool is_hexadecimal(std::string_view text);

// Puts the bytes that pairs of digits (is_hexadecimal) stand for into `target`, which has room for
// half as many bytes as there are digits.
void put_hexadecimal(std::string_view digits, std::uint8_t* target);

}  // namespace records
