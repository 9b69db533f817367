#include "records/hexadecimal.h"

#include <algorithm>

namespace records {

namespace {

// -1 for a character that is not a digit.
int digit_value(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

}  // namespace

std::string hexadecimal(std::span<const std::uint8_t> bytes, std::string_view gap) {
    constexpr std::string_view DIGITS = "0123456789ABCDEF";
    std::string text;
    for (const std::uint8_t byte : bytes) {
        if (!text.empty()) text += gap;
        text += DIGITS[byte >> 4];
        text += DIGITS[byte & 0xF];
    }
    return text;
}

std::string hexadecimal(std::string_view bytes, std::string_view gap) {
    const auto* const data = reinterpret_cast<const std::uint8_t*>(bytes.data());
    return hexadecimal(std::span(data, bytes.size()), gap);
}

bool is_hexadecimal(std::string_view text) {
    return text.size() % 2 == 0 &&
           std::all_of(text.begin(), text.end(), [](char c) { return digit_value(c) >= 0; });
}

void put_hexadecimal(std::string_view digits, std::uint8_t* target) {
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
        const int value = digit_value(digits[i]) << 4 | digit_value(digits[i + 1]);
        target[i / 2] = static_cast<std::uint8_t>(value);
    }
}

}  // namespace records
