// Hexadecimal floating point of 4 or 8 bytes, as mainframes have it: a sign bit, 7 bits of exponent
// (a power of 16, 64 more than it is) and a fraction of 6 or 14 hexadecimal digits.
#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>

#include "records/numbers/decimals.h"
#include "records/numbers/fields.h"

namespace records::numbers {
namespace {

constexpr int EXPONENT_ZERO = 64;
constexpr int MAX_EXPONENT = 127;
// Powers of ten beyond which every number is too large, or too small.
constexpr std::int64_t MAX_PLACE = 80;

// A whole number without a sign of up to 2080 bits: room for 400 digits with 80 zeros, in units of
// a field's last bit.
class BigNumber {
  public:
    explicit BigNumber(std::uint64_t value = 0) {
        for (; value > 0; value >>= 32) limbs_[used_++] = static_cast<std::uint32_t>(value);
    }

    void multiply_and_add(std::uint32_t factor, std::uint32_t addend) {
        std::uint64_t carry = addend;
        for (std::size_t i = 0; i < used_; ++i) {
            carry += std::uint64_t{limbs_[i]} * factor;
            limbs_[i] = static_cast<std::uint32_t>(carry);
            carry >>= 32;
        }
        if (carry > 0) limbs_[used_++] = static_cast<std::uint32_t>(carry);
    }
    void multiply_by_power(std::uint32_t base, std::int64_t exponent) {
        for (; exponent > 0; --exponent) multiply_and_add(base, 0);
    }
    std::uint32_t divide(std::uint32_t divisor) {  // result: the remainder
        std::uint64_t rest = 0;
        for (std::size_t i = used_; i-- > 0;) {
            rest = rest << 32 | limbs_[i];
            limbs_[i] = static_cast<std::uint32_t>(rest / divisor);
            rest %= divisor;
        }
        trim();
        return static_cast<std::uint32_t>(rest);
    }
    void shift_left(int bits) {
        for (; bits >= 16; bits -= 16) multiply_and_add(1U << 16, 0);
        multiply_and_add(1U << bits, 0);
    }
    // Takes a number away that is not larger.
    void subtract(const BigNumber& other) {
        std::uint64_t borrow = 0;
        for (std::size_t i = 0; i < used_; ++i) {
            const std::uint64_t taken = borrow + (i < other.used_ ? other.limbs_[i] : 0);
            borrow = limbs_[i] < taken ? 1 : 0;
            limbs_[i] = static_cast<std::uint32_t>(limbs_[i] - taken);
        }
        trim();
    }
    bool is_less_than(const BigNumber& other) const {
        if (used_ != other.used_) return used_ < other.used_;
        for (std::size_t i = used_; i-- > 0;) {
            if (limbs_[i] != other.limbs_[i]) return limbs_[i] < other.limbs_[i];
        }
        return false;
    }
    bool is_zero() const { return used_ == 0; }
    int bits() const {
        return used_ == 0 ? 0 : static_cast<int>(used_) * 32 - std::countl_zero(limbs_[used_ - 1]);
    }

  private:
    void trim() {
        while (used_ > 0 && limbs_[used_ - 1] == 0) --used_;
    }

    std::array<std::uint32_t, 65> limbs_{};  // the least significant first
    std::size_t used_ = 0;
};

// value / 2^bits and value * 2^-bits as an exact decimal.
Decimal exact(std::uint64_t value, int power_of_two) {
    BigNumber number(value);
    number.multiply_by_power(power_of_two > 0 ? 2 : 5, std::abs(power_of_two));
    Decimal result;
    set_zero(result);
    result.scale = std::min(power_of_two, 0);
    std::array<std::uint8_t, Decimal::MAX_DIGITS> reversed;
    int count = 0;
    while (!number.is_zero()) {
        reversed[static_cast<std::size_t>(count++)] = static_cast<std::uint8_t>(number.divide(10));
    }
    std::reverse_copy(reversed.begin(), reversed.begin() + count, result.digits.begin());
    result.count = count;
    return result;
}

// The number rounded to so many digits.
Decimal rounded(const Decimal& number, int digits) {
    Decimal result = number;
    if (digits >= number.count) return result;
    result.count = digits;
    result.scale += number.count - digits;
    if (number.digits[static_cast<std::size_t>(digits)] < 5) return result;
    int at = digits - 1;
    while (at >= 0 && result.digits[static_cast<std::size_t>(at)] == 9) {
        result.digits[static_cast<std::size_t>(at--)] = 0;
    }
    if (at >= 0) {
        ++result.digits[static_cast<std::size_t>(at)];
    } else {
        result.digits[0] = 1;
        result.count = 1;
        result.scale += digits;
    }
    return result;
}

// The shortest decimal that lies between the middles to the numbers before and after.
void find_shortest(std::uint64_t fraction, int power_of_two, std::uint64_t smallest_fraction,
                   Decimal& out) {
    // Below a power of 16 the numbers are 16 times as dense. In units of 1/32 of the last bit:
    const std::uint64_t to_lower = fraction == smallest_fraction ? 1 : 16;
    const Decimal value = exact(fraction * 32, power_of_two - 5);
    const Decimal low = exact(fraction * 32 - to_lower, power_of_two - 5);
    const Decimal high = exact(fraction * 32 + 16, power_of_two - 5);
    for (int digits = 1; digits <= value.count; ++digits) {
        out = rounded(value, digits);
        if (compare_magnitudes(low, out) < 0 && compare_magnitudes(out, high) < 0) break;
    }
    while (out.count > 0 && out.digits[static_cast<std::size_t>(out.count) - 1] == 0) {
        --out.count;
        ++out.scale;
    }
}

struct HexFloat {
    std::uint64_t fraction = 0;
    int exponent = 0;  // as stored
};

// The nearest number with a fraction of `bits` bits, whose first hexadecimal digit is not 0. The
// exponent may be out of range.
HexFloat nearest(const Decimal& number, int bits) {
    BigNumber dividend;
    for (int i = 0; i < number.count; ++i) {
        dividend.multiply_and_add(10, number.digits[static_cast<std::size_t>(i)]);
    }
    BigNumber divisor(1);
    (number.scale > 0 ? dividend : divisor).multiply_by_power(10, std::abs(number.scale));
    // The value is below 16 to this power, and not below the one before, or the one before that.
    const int magnitude = dividend.bits() - divisor.bits() + 1;
    HexFloat result;
    result.exponent = EXPONENT_ZERO + (magnitude > 0 ? (magnitude + 3) / 4 : -(-magnitude / 4));
    const int shift = bits - 4 * (result.exponent - EXPONENT_ZERO);
    (shift > 0 ? dividend : divisor).shift_left(std::abs(shift));
    const std::uint64_t smallest = std::uint64_t{1} << (bits - 4);
    const auto divide = [&] {
        // Bit by bit, with the divisor's multiples from the largest down.
        BigNumber rest = dividend;
        result.fraction = 0;
        for (int bit = bits; bit >= 0; --bit) {
            BigNumber part = divisor;
            part.shift_left(bit);
            if (rest.is_less_than(part)) continue;
            rest.subtract(part);
            result.fraction |= std::uint64_t{1} << bit;
        }
        return rest;
    };
    BigNumber rest = divide();
    if (result.fraction < smallest) {
        --result.exponent;
        dividend.shift_left(4);
        rest = divide();
    }
    rest.shift_left(1);
    if (!rest.is_less_than(divisor)) ++result.fraction;
    if (result.fraction == smallest * 16) {
        result.fraction = smallest;
        ++result.exponent;
    }
    return result;
}

int fraction_bits(const Field& field) {
    return 8 * (field.length - 1);
}

void save(const Field& field, bool negative, const HexFloat& number) {
    field.bytes[0] = static_cast<std::uint8_t>((negative ? 0x80 : 0) | number.exponent);
    for (int i = 1; i < field.length; ++i) {
        field.bytes[i] = static_cast<std::uint8_t>(number.fraction >> (8 * (field.length - 1 - i)));
    }
}

bool is_hex_float(const Field& field) {
    return field.length == 4 || field.length == 8;
}

}  // namespace

bool read_hex_float(const Field& field, Decimal& out) {
    set_zero(out);
    if (!is_hex_float(field)) return false;
    HexFloat number{0, field.bytes[0] & 0x7F};
    for (int i = 1; i < field.length; ++i) number.fraction = number.fraction << 8 | field.bytes[i];
    const std::uint64_t smallest = std::uint64_t{1} << (fraction_bits(field) - 4);
    if (number.fraction > 0) {
        // Numbers that do not begin with a digit other than 0 are valid; they have fewer digits.
        while (number.fraction < smallest) {
            number.fraction <<= 4;
            --number.exponent;
        }
        find_shortest(number.fraction, 4 * (number.exponent - EXPONENT_ZERO) - fraction_bits(field),
                      smallest, out);
    }
    out.negative = (field.bytes[0] & 0x80) != 0;
    return true;
}

bool store_hex_float(const Field& field, const Decimal& number) {
    if (!is_hex_float(field)) return false;
    Decimal value = number;
    const auto* const first =
        std::find_if(number.digits.begin(), number.digits.begin() + number.count,
                     [](std::uint8_t digit) { return digit != 0; });
    value.count = static_cast<int>(number.digits.begin() + number.count - first);
    std::copy_n(first, value.count, value.digits.begin());
    const std::int64_t place = std::int64_t{value.count} + value.scale;
    HexFloat result;
    if (value.count > 0 && place > -MAX_PLACE && place <= MAX_PLACE) {
        result = nearest(value, fraction_bits(field));
    } else if (value.count > 0) {
        result = {1, place > 0 ? MAX_EXPONENT + 1 : -1};
    }
    const bool is_too_large = result.exponent > MAX_EXPONENT;
    const bool is_too_small = result.exponent < 0;
    if (is_too_large) {
        result = {(std::uint64_t{1} << fraction_bits(field)) - 1, MAX_EXPONENT};
    } else if (is_too_small) {
        result = {};
    }
    save(field, number.negative, result);
    return !is_too_large && !is_too_small;
}

}  // namespace records::numbers
