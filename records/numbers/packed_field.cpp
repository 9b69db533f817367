// Packed decimal numbers: two digits a byte, with a sign in the last half byte or without.
#include <algorithm>

#include "records/numbers/decimals.h"
#include "records/numbers/fields.h"

namespace records::numbers {
namespace {

constexpr unsigned POSITIVE = 0xC;
constexpr unsigned NEGATIVE = 0xD;
constexpr unsigned UNSIGNED = 0xF;

// Half bytes are numbered from 0, the high half of the first byte.
struct Places {
    std::int64_t end;    // after the digits
    std::int64_t first;  // of the digits of the picture; those before it are unused
};

Places places_of(const Field& field) {
    const std::int64_t end =
        std::int64_t{field.length} * 2 - (field.type == PACKED_NO_SIGN ? 0 : 1);
    const int pictured = field.digits > 0 ? field.digits : Decimal::MAX_DIGITS;
    return {end, std::max<std::int64_t>(0, end - pictured)};
}

unsigned half_byte(const Field& field, std::int64_t index) {
    const unsigned byte = field.bytes[index / 2];
    return index % 2 == 0 ? byte >> 4 : byte & 0xF;
}

// Reads the sign half byte. False when the field may not hold it.
bool read_sign(const Field& field, bool& negative) {
    const unsigned sign = field.bytes[field.length - 1] & 0xF;
    if (sign < 0xA) return false;
    const bool minus = sign == NEGATIVE || sign == 0xB;
    negative = minus && field.type == PACKED_SIGNED;
    return negative == minus;
}

}  // namespace

bool read_packed(const Field& field, Decimal& out) {
    set_zero(out);
    if (field.length == 0) return false;
    out.scale = field.scale;
    const Places places = places_of(field);
    bool valid = true;
    for (std::int64_t i = 0; i < places.first; ++i) {
        if (half_byte(field, i) != 0) valid = false;
    }
    DigitWriter digits(out);
    for (std::int64_t i = places.first; i < places.end; ++i) {
        unsigned digit = half_byte(field, i);
        if (digit > 9) {
            valid = false;
            digit = 0;
        }
        digits.append(digit);
    }
    digits.finish();
    if (field.type != PACKED_NO_SIGN && !read_sign(field, out.negative)) valid = false;
    return valid;
}

bool store_packed(const Field& field, const Decimal& number) {
    if (field.length == 0) return false;
    const Places places = places_of(field);
    // The digits with an unused zero before them and one for the sign after them, so that they
    // can be taken in pairs.
    std::array<std::uint8_t, Decimal::MAX_DIGITS + 2> digits;
    const int lead = static_cast<int>(places.first % 2);
    const int width = static_cast<int>(places.end - places.first);
    digits[0] = 0;
    bool kept = place_digits(number, field.scale, width, 0, digits.data() + lead);
    if (field.type != PACKED_NO_SIGN) {
        const unsigned sign = field.type == PACKED_UNSIGNED ? UNSIGNED
                              : number.negative             ? NEGATIVE
                                                            : POSITIVE;
        digits.data()[lead + width] = static_cast<std::uint8_t>(sign);
    }
    const std::int64_t unused_bytes = places.first / 2;
    std::fill_n(field.bytes, unused_bytes, std::uint8_t{0});
    const std::uint8_t* pair = digits.data();
    for (std::int64_t i = unused_bytes; i < field.length; ++i, pair += 2) {
        field.bytes[i] = static_cast<std::uint8_t>(pair[0] << 4 | pair[1]);
    }
    if (field.type != PACKED_SIGNED && number.negative && !is_zero(number)) kept = false;
    return kept;
}

}  // namespace records::numbers
