#include "records/numbers/number_text.h"

#include <algorithm>
#include <cstring>

#include "records/numbers/decimals.h"

namespace records::numbers {
namespace {

constexpr std::int64_t MAX_SCALE = 100'000'000;  // far beyond any field, far from overflow

bool is_blank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

const char* skip_digits(const char* c, const char* end) {
    while (c < end && is_digit(*c)) ++c;
    return c;
}

const char* skip_zeros(const char* c, const char* end) {
    while (c < end && *c == '0') ++c;
    return c;
}

// Appends the values of digit characters for which there is room.
void append_values(const char* c, std::ptrdiff_t count, Decimal& out) {
    std::uint8_t* digits = out.digits.data() + out.count;
    for (std::ptrdiff_t i = 0; i < count; ++i) digits[i] = static_cast<std::uint8_t>(c[i] - '0');
    out.count += static_cast<int>(count);
}

// Takes the digits of the integer part. False when there were too many.
bool take_integer(const char* c, const char* end, Decimal& out) {
    c = skip_zeros(c, end);
    const bool all = end - c <= Decimal::MAX_DIGITS;
    if (!all) c = skip_zeros(end - Decimal::MAX_DIGITS, end);
    append_values(c, end - c, out);
    return all;
}

// Takes the digits after the point; those that do not fit are cut. Gives the power of ten of the
// last one taken.
std::int64_t take_decimals(const char* decimals, const char* end, Decimal& out) {
    const char* c = out.count == 0 ? skip_zeros(decimals, end) : decimals;
    const std::ptrdiff_t taken = std::min<std::ptrdiff_t>(end - c, Decimal::MAX_DIGITS - out.count);
    append_values(c, taken, out);
    return decimals - (c + taken);
}

// Reads sign and digits of an exponent; nothing else may follow.
bool take_exponent(const char* c, const char* end, std::int64_t& exponent) {
    const bool negative = c < end && *c == '-';
    if (c < end && (*c == '-' || *c == '+')) ++c;
    if (c == end || skip_digits(c, end) != end) return false;
    exponent = 0;
    for (; c < end; ++c) exponent = std::min(exponent * 10 + (*c - '0'), MAX_SCALE);
    if (negative) exponent = -exponent;
    return true;
}

// What a number looks like as text.
struct Shape {
    bool sign;
    int integers;  // digits before the point, without a lone zero
    int decimals;
    bool zero;      // a lone zero stands before the point
    bool complete;  // neither digits nor the sign are left out

    int length() const {
        return (sign ? 1 : 0) + (zero ? 1 : 0) + integers + (decimals > 0 ? decimals + 1 : 0);
    }
};

int integer_digits(const Decimal& number) {
    if (number.count == 0) return 0;
    const std::int64_t digits = std::int64_t{number.count} + number.scale;
    return static_cast<int>(std::clamp<std::int64_t>(digits, 0, MAX_SCALE));
}

// Fits a number into `length` characters (at least one), giving up first the zero before the
// point, then high-order digits, then low-order decimals, and the sign where there is room for a
// single digit only.
Shape fixed_shape(const Decimal& number, int decimals, int length) {
    const int integers = integer_digits(number);
    Shape shape{number.negative, integers, decimals, integers == 0 && decimals == 0, true};
    if (shape.length() > length) {
        shape.complete = false;
        shape.sign = shape.sign && length > 1;
        const int room = length - (shape.sign ? 1 : 0);
        shape.decimals = std::clamp(room - 1, 0, decimals);
        const int fraction = shape.decimals > 0 ? shape.decimals + 1 : 0;
        shape.integers = std::min(integers, room - fraction);
        shape.zero = shape.integers == 0 && shape.decimals == 0;
    }
    if (shape.integers == 0 && shape.length() < length) shape.zero = true;
    return shape;
}

void write_digits(const Decimal& number, int scale, int width, char* out) {
    copy_window(number, digit_window(number, scale, width), width, '0',
                reinterpret_cast<std::uint8_t*>(out));
}

void write_shape(const Decimal& number, const Shape& shape, char point, std::span<char> out) {
    char* c = out.data();
    if (shape.sign) *c++ = '-';
    if (shape.zero) *c++ = '0';
    write_digits(number, 0, shape.integers, c);
    c += shape.integers;
    if (shape.decimals > 0) {
        *c++ = point;
        write_digits(number, -shape.decimals, shape.decimals, c);
        c += shape.decimals;
    }
    std::memset(c, ' ', static_cast<std::size_t>(out.data() + out.size() - c));
}

// Rounds to the power of ten `scale`, halves away from zero, and drops zeros at the end.
void round_to(Decimal& number, int scale) {
    const std::int64_t kept = std::int64_t{number.count} + number.scale - scale;
    if (kept >= number.count) return;
    const bool up = kept >= 0 && number.digits[static_cast<std::size_t>(kept)] >= 5;
    number.count = static_cast<int>(std::max<std::int64_t>(kept, 0));
    number.scale = scale;
    auto last = [&]() -> std::uint8_t& {
        return number.digits[static_cast<std::size_t>(number.count - 1)];
    };
    auto drop_last = [&] {
        --number.count;
        ++number.scale;
    };
    while (up && number.count > 0 && last() == 9) drop_last();
    if (up && number.count > 0) {
        ++last();
    } else if (up) {
        number.digits[0] = 1;
        number.count = 1;
    }
    while (number.count > 0 && last() == 0) drop_last();
}

int decimal_digits(const Decimal& number) {
    return number.count == 0 ? 0
                             : static_cast<int>(std::clamp<std::int64_t>(
                                   -std::int64_t{number.scale}, 0, MAX_SCALE));
}

void fill_with_nines(bool negative, std::span<char> out) {
    std::fill(out.begin(), out.end(), '9');
    if (negative && out.size() > 1) out[0] = '-';
}

}  // namespace

bool parse_text(std::string_view text, char point, Decimal& out) {
    set_zero(out);
    const char* c = text.data();
    const char* end = c + text.size();
    while (c < end && is_blank(*c)) ++c;
    while (c < end && is_blank(end[-1])) --end;
    const bool negative = c < end && *c == '-';
    if (c < end && (*c == '-' || *c == '+')) ++c;

    const char* integer_end = skip_digits(c, end);
    auto digits_seen = integer_end - c;
    const bool fits = take_integer(c, integer_end, out);
    c = integer_end;
    std::int64_t scale = 0;
    if (c < end && (*c == point || *c == '.')) {
        const char* decimals = ++c;
        c = skip_digits(c, end);
        digits_seen += c - decimals;
        scale = take_decimals(decimals, c, out);
    }
    std::int64_t exponent = 0;
    const bool has_exponent = c < end && (*c == 'e' || *c == 'E');
    const bool is_number =
        digits_seen > 0 && (has_exponent ? take_exponent(c + 1, end, exponent) : c == end);
    if (!is_number) {
        set_zero(out);
        return false;
    }
    out.scale = static_cast<int>(std::clamp(scale + exponent, -MAX_SCALE, MAX_SCALE));
    out.negative = negative;
    return fits;
}

bool write_fixed(const Decimal& number, int decimals, char point, std::span<char> out) {
    if (out.empty()) return false;
    const Shape shape = fixed_shape(number, decimals, static_cast<int>(out.size()));
    write_shape(number, shape, point, out);
    return shape.complete;
}

bool write_shortest(const Decimal& number, char point, std::span<char> out) {
    if (out.empty()) return false;
    const int length = static_cast<int>(out.size());
    Decimal rounded = number;
    const int sign = number.negative ? 1 : 0;
    // Rounding up may add an integer digit, so what fits is looked at twice.
    for (int pass = 0; pass < 2; ++pass) {
        const int room = length - sign - integer_digits(rounded) - 1;
        round_to(rounded, -std::clamp(decimal_digits(rounded), 0, std::max(room, 0)));
    }
    const Shape shape = fixed_shape(rounded, decimal_digits(rounded), length);
    if (!shape.complete) {
        fill_with_nines(number.negative, out);
        return false;
    }
    write_shape(rounded, shape, point, out);
    return true;
}

}  // namespace records::numbers
