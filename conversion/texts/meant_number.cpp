#include "conversion/texts/meant_number.h"

#include <algorithm>

namespace conversion {

namespace {

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

bool is_between(std::string_view two_digits, int low, int high) {
    const int value = (two_digits[0] - '0') * 10 + (two_digits[1] - '0');
    return value >= low && value <= high;
}

bool is_date(std::string_view text) {
    constexpr std::string_view SHAPE = "9999-99-99";
    const auto fits = [](char c, char shape) { return shape == '9' ? is_digit(c) : c == shape; };
    constexpr int MONTHS = 12;
    constexpr int DAYS = 31;
    return text.size() == SHAPE.size() &&
           std::equal(text.begin(), text.end(), SHAPE.begin(), fits) &&
           is_between(text.substr(5), 1, MONTHS) && is_between(text.substr(8), 1, DAYS);
}

}  // namespace

std::optional<std::string> meant_number(std::string_view text, const NumberField& field) {
    constexpr int DATE_DIGITS = 8;
    if (field.digits == DATE_DIGITS && field.scale == 0 && is_date(text)) {
        std::string digits(text);
        std::erase(digits, '-');
        return digits;
    }
    if (!field.has_decimal_comma || text.find('.') != std::string_view::npos) return std::nullopt;
    if (std::count(text.begin(), text.end(), ',') == 1) {
        std::string number(text);
        std::replace(number.begin(), number.end(), ',', '.');
        return number;
    }
    return std::nullopt;
}

}  // namespace conversion
