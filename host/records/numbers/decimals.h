// Digit-level operations on decimals that the conversions share.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "host/records/numbers.h"

namespace records::numbers {

inline void set_zero(Decimal& number) {
    number.count = 0;
    number.scale = 0;
    number.negative = false;
}

inline bool is_zero(const Decimal& number) {
    return std::all_of(number.digits.begin(), number.digits.begin() + number.count,
                       [](std::uint8_t digit) { return digit == 0; });
}

// Appends a digit to a number that has room for it; leading zeros are left out.
inline void append_digit(Decimal& number, unsigned digit) {
    if (digit == 0 && number.count == 0) return;
    number.digits[static_cast<std::size_t>(number.count++)] = static_cast<std::uint8_t>(digit);
}

// Where the number's digits fall in a run of `width` digits whose last one has the power of ten
// `scale`: the run begins with `zeros` zeros, then come `copied` digits of the number from `first`
// on, and zeros fill the rest. The first `first` digits of the number lie above the run.
struct DigitWindow {
    int zeros;
    int first;
    int copied;
};

inline DigitWindow digit_window(const Decimal& number, int scale, int width) {
    const std::int64_t offset =
        std::int64_t{number.count} + number.scale - std::int64_t{scale} - width;
    DigitWindow window{};
    window.zeros = static_cast<int>(std::clamp<std::int64_t>(-offset, 0, width));
    window.first = static_cast<int>(std::clamp<std::int64_t>(offset, 0, number.count));
    window.copied = std::min(width - window.zeros, number.count - window.first);
    return window;
}

// Writes the digits of the number from the power of ten `scale` up, `width` digits with leading
// zeros, as values 0 to 9. Lower digits are cut. False when digits above them were lost.
inline bool place_digits(const Decimal& number, int scale, int width, std::uint8_t* out) {
    const DigitWindow window = digit_window(number, scale, width);
    const int used = window.zeros + window.copied;
    const std::uint8_t* digits = number.digits.data() + window.first;
    std::memset(out, 0, static_cast<std::size_t>(window.zeros));
    for (int i = 0; i < window.copied; ++i) out[window.zeros + i] = digits[i];
    std::memset(out + used, 0, static_cast<std::size_t>(width - used));
    return std::all_of(number.digits.begin(), number.digits.begin() + window.first,
                       [](std::uint8_t digit) { return digit == 0; });
}

// -1, 0 or 1: compares two numbers other than zero without their signs.
int compare_magnitudes(const Decimal& first, const Decimal& second);

}  // namespace records::numbers
