// Digit-level operations on decimals that the conversions share.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "records/numbers.h"

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

// Appends digits to a number, leaving leading zeros out. Keeps its position to itself, so that
// loops hold it in a register; the number's count is right after finish(). No branch on the digit:
// how many zeros lead is different in each record. At most MAX_DIGITS digits may be appended.
class DigitWriter {
  public:
    explicit DigitWriter(Decimal& number)
        : number_(number),
          first_(number.digits.data()),
          next_(number.digits.data() + number.count) {}

    void append(unsigned digit) {
        *next_ = static_cast<std::uint8_t>(digit);
        next_ += (digit != 0 || next_ != first_) ? 1 : 0;
    }
    int count() const { return static_cast<int>(next_ - first_); }
    void finish() { number_.count = count(); }

  private:
    Decimal& number_;
    std::uint8_t* first_;
    std::uint8_t* next_;
};

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

// Writes the run, each digit with `zero` added: 0 for values, '0' for characters. The fills are
// mostly empty, and calls are expensive for a few digits.
inline void copy_window(const Decimal& number, const DigitWindow& window, int width,
                        std::uint8_t zero, std::uint8_t* out) {
    if (window.zeros > 0) std::memset(out, zero, static_cast<std::size_t>(window.zeros));
    const std::uint8_t* digits = number.digits.data() + window.first;
    const int used = window.zeros + window.copied;
    for (int i = window.zeros; i < used; ++i) out[i] = static_cast<std::uint8_t>(*digits++ + zero);
    if (used < width) std::memset(out + used, zero, static_cast<std::size_t>(width - used));
}

// Writes the digits of the number from the power of ten `scale` up, `width` digits with leading
// zeros, `zero` added to each. Lower digits are cut. False when digits above them were lost.
inline bool place_digits(const Decimal& number, int scale, int width, std::uint8_t zero,
                         std::uint8_t* out) {
    const DigitWindow window = digit_window(number, scale, width);
    copy_window(number, window, width, zero, out);
    return std::all_of(number.digits.begin(), number.digits.begin() + window.first,
                       [](std::uint8_t digit) { return digit == 0; });
}

// -1, 0 or 1: compares two numbers other than zero without their signs.
int compare_magnitudes(const Decimal& first, const Decimal& second);

}  // namespace records::numbers
