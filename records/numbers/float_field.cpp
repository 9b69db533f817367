// Floating-point numbers, IEEE 754 with 4 or 8 bytes in the machine's byte order.
#include <charconv>
#include <cmath>
#include <limits>

#include "records/numbers/decimals.h"
#include "records/numbers/fields.h"

namespace records::numbers {
namespace {

template <typename Float>
bool read(const Field& field, Decimal& out) {
    Float value;
    std::memcpy(&value, field.bytes, sizeof value);
    if (!std::isfinite(value)) return false;
    out.negative = std::signbit(value);
    if (std::fpclassify(value) == FP_ZERO) return true;

    // Shortest form: d[.ddd]e(+|-)dd
    std::array<char, 40> text;
    const char* end = std::to_chars(text.data(), text.data() + text.size(), std::abs(value),
                                    std::chars_format::scientific)
                          .ptr;
    DigitWriter digits(out);
    const char* c = text.data();
    for (; *c != 'e'; ++c) {
        if (*c != '.') digits.append(static_cast<unsigned>(*c - '0'));
    }
    digits.finish();
    c += c[1] == '+' ? 2 : 1;
    int exponent = 0;
    std::from_chars(c, end, exponent);
    out.scale = exponent - (out.count - 1);
    return true;
}

// The nearest number of the type. A number too large becomes the largest one, and gives false.
template <typename Float>
bool store(const Field& field, const Decimal& number) {
    std::array<char, Decimal::MAX_DIGITS + 16> text;
    char* c = text.data();
    *c++ = '0';
    for (int i = 0; i < number.count; ++i) {
        *c++ = static_cast<char>('0' + number.digits[static_cast<std::size_t>(i)]);
    }
    *c++ = 'e';
    c = std::to_chars(c, text.data() + text.size(), number.scale).ptr;

    Float value = 0;
    bool fits = true;
    if (std::from_chars(text.data(), c, value).ec == std::errc::result_out_of_range) {
        fits = std::int64_t{number.count} + number.scale <= 0;
        value = fits ? Float{0} : std::numeric_limits<Float>::max();
    }
    if (number.negative) value = -value;
    std::memcpy(field.bytes, &value, sizeof value);
    return fits;
}

}  // namespace

bool read_float(const Field& field, Decimal& out) {
    set_zero(out);
    if (field.length == sizeof(float)) return read<float>(field, out);
    return field.length == sizeof(double) && read<double>(field, out);
}

bool store_float(const Field& field, const Decimal& number) {
    if (field.length == sizeof(float)) return store<float>(field, number);
    return field.length == sizeof(double) && store<double>(field, number);
}

}  // namespace records::numbers
