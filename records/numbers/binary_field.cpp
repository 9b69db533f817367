// Binary integers of 1 to 16 bytes, two's complement or unsigned, in either byte order.
#include <charconv>

#include "records/numbers/decimals.h"
#include "records/numbers/fields.h"

namespace records::numbers {
namespace {

__extension__ typedef unsigned __int128 Uint128;

constexpr int MAX_BYTES = 16;
// Ten to this power is a multiple of two to the power of 128.
constexpr int POWER_WITHOUT_LOW_BITS = 128;

bool is_signed(const Field& field) {
    return field.type == BINARY_SIGNED || field.type == NATIVE_SIGNED;
}

bool is_big_endian(const Field& field) {
    return field.type == BINARY_SIGNED || field.type == BINARY_UNSIGNED;
}

// The largest value of `bits` bits.
Uint128 all_bits(int bits) {
    return ~Uint128{0} >> (8 * MAX_BYTES - bits);
}

template <typename Bits>
Bits load(const Field& field) {
    Bits bits = 0;
    if (is_big_endian(field)) {
        for (int i = 0; i < field.length; ++i) bits = bits << 8 | field.bytes[i];
    } else {
        for (int i = field.length - 1; i >= 0; --i) bits = bits << 8 | field.bytes[i];
    }
    return bits;
}

void save(const Field& field, Uint128 bits) {
    for (int i = 0; i < field.length; ++i, bits >>= 8) {
        field.bytes[is_big_endian(field) ? field.length - 1 - i : i] =
            static_cast<std::uint8_t>(bits);
    }
}

void append_number(Decimal& out, std::uint64_t value) {
    std::array<char, 20> text;
    const char* end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    DigitWriter digits(out);
    for (const char* c = text.data(); c < end; ++c) digits.append(static_cast<unsigned>(*c - '0'));
    digits.finish();
}

// Writes a value of any size in parts of 18 digits, the most significant first.
void append_wide_number(Decimal& out, Uint128 value) {
    constexpr std::uint64_t PART = 1'000'000'000'000'000'000U;
    constexpr int PART_DIGITS = 18;
    std::array<std::uint64_t, 3> parts{static_cast<std::uint64_t>(value / PART / PART),
                                       static_cast<std::uint64_t>(value / PART % PART),
                                       static_cast<std::uint64_t>(value % PART)};
    DigitWriter all(out);
    for (std::uint64_t part : parts) {
        std::array<unsigned, PART_DIGITS> digits;
        for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit, part /= 10) {
            *digit = static_cast<unsigned>(part % 10);
        }
        for (unsigned digit : digits) all.append(digit);
    }
    all.finish();
}

// The number as an integer in units of ten to the power of `scale`, decimals cut; modulo two to the
// power of 128, and `fits` false, when it is too large.
Uint128 to_integer(const Decimal& number, int scale, bool& fits) {
    Uint128 value = 0;
    fits = true;
    const std::int64_t shift = std::int64_t{number.scale} - scale;
    const std::int64_t used =
        shift < 0 ? std::max<std::int64_t>(0, number.count + shift) : number.count;
    for (std::int64_t i = 0; i < used; ++i) {
        const bool high = __builtin_mul_overflow(value, Uint128{10}, &value);
        const bool low = __builtin_add_overflow(
            value, Uint128{number.digits[static_cast<std::size_t>(i)]}, &value);
        if (high || low) fits = false;
    }
    const std::int64_t zeros = std::min<std::int64_t>(shift, POWER_WITHOUT_LOW_BITS);
    for (std::int64_t i = 0; i < zeros; ++i) {
        if (__builtin_mul_overflow(value, Uint128{10}, &value)) fits = false;
    }
    return value;
}

// The number's value cut to the digits of the picture, as an integer of the field's scale.
Uint128 to_pictured_integer(const Decimal& number, const Field& field, bool& fits) {
    Decimal cut;
    cut.scale = field.scale;
    cut.count = std::min(field.digits, 38);
    fits = place_digits(number, field.scale, cut.count, 0, cut.digits.data());
    bool in_range = false;
    return to_integer(cut, field.scale, in_range);
}

}  // namespace

bool read_binary(const Field& field, Decimal& out) {
    set_zero(out);
    if (field.length == 0 || field.length > MAX_BYTES) return false;
    out.scale = field.scale;
    const int unused_bits = 8 * (field.length <= 8 ? 8 - field.length : MAX_BYTES - field.length);
    if (field.length <= 8) {
        auto bits = load<std::uint64_t>(field);
        out.negative = is_signed(field) && (bits >> (8 * field.length - 1)) != 0;
        if (out.negative) bits = (~bits + 1) << unused_bits >> unused_bits;
        append_number(out, bits);
    } else {
        auto bits = load<Uint128>(field);
        out.negative = is_signed(field) && (bits >> (8 * field.length - 1)) != 0;
        if (out.negative) bits = (~bits + 1) << unused_bits >> unused_bits;
        append_wide_number(out, bits);
    }
    return true;
}

bool store_binary(const Field& field, const Decimal& number) {
    if (field.length == 0 || field.length > MAX_BYTES) return false;
    const bool cut_to_picture = field.has(FIELD_TRUNCATE) && field.digits > 0;
    bool fits = false;
    const Uint128 magnitude = cut_to_picture ? to_pictured_integer(number, field, fits)
                                             : to_integer(number, field.scale, fits);
    const bool negative = number.negative && is_signed(field);
    if (number.negative && !negative && magnitude != 0) fits = false;
    Uint128 largest = all_bits(8 * field.length);
    if (is_signed(field)) largest = largest / 2 + (negative ? 1 : 0);
    save(field, negative ? ~magnitude + 1 : magnitude);
    return fits && magnitude <= largest;
}

}  // namespace records::numbers
