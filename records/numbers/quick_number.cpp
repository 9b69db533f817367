#include "records/numbers/quick_number.h"

#include <algorithm>
#include <array>

#include "records/numbers/fields.h"

namespace records::numbers {
namespace {

constexpr int MOST_DIGITS = 18;

constexpr std::array<std::uint64_t, MOST_DIGITS + 1> make_powers() {
    std::array<std::uint64_t, MOST_DIGITS + 1> powers{};
    powers[0] = 1;
    for (std::size_t i = 1; i < powers.size(); ++i) powers[i] = 10 * powers[i - 1];
    return powers;
}
constexpr auto POWERS_OF_TEN = make_powers();

bool has_place(std::uint64_t magnitude, int digits) {
    return digits > MOST_DIGITS || magnitude < POWERS_OF_TEN[static_cast<std::size_t>(digits)];
}

// A number in units of the field's last digit.
struct Whole {
    std::uint64_t magnitude = 0;
    bool negative = false;
};

// Adds the digits from `at` on to a number. Result: what comes after them.
const char* add_digits(const char* at, const char* end, std::uint64_t& magnitude) {
    for (; at < end; ++at) {
        const unsigned digit = static_cast<unsigned char>(*at) - unsigned{'0'};
        if (digit > 9) break;
        magnitude = magnitude * 10 + digit;
    }
    return at;
}

// A minus sign before zero, which some fields keep, is left to the long way.
bool parse_whole(const XfdDataDesc& text, int scale, Whole& out) {
    const auto* at = static_cast<const char*>(text.address);
    const auto* const end = at + text.length;
    out.negative = at < end && *at == '-';
    if (out.negative) ++at;
    if (at == end || end - at > MOST_DIGITS + 1) return false;
    const char* const point = add_digits(at, end, out.magnitude);
    auto digits = static_cast<int>(point - at);
    int decimals = 0;
    if (point < end) {
        if (*point != '.' || add_digits(point + 1, end, out.magnitude) != end) return false;
        decimals = static_cast<int>(end - point) - 1;
        digits += decimals;
    }
    const int missing = -scale - decimals;
    if (digits == 0 || missing < 0 || digits + missing > MOST_DIGITS) return false;
    out.magnitude *= POWERS_OF_TEN[static_cast<std::size_t>(missing)];
    return !out.negative || out.magnitude != 0;
}

bool store_digits(const Field& field, Whole number) {
    constexpr unsigned ELSEWHERE = FIELD_EBCDIC_SIGN | FIELD_EBCDIC_TEXT | FIELD_BLANK_WHEN_ZERO |
                                   FIELD_STORED_POINT | FIELD_STORED_COMMA;
    if ((field.flags & ELSEWHERE) != 0 || !has_place(number.magnitude, field.length)) return false;
    if (number.negative && field.type != DISPLAY_SIGN_TRAILING) return false;
    for (int i = field.length - 1; i >= 0; --i, number.magnitude /= 10) {
        field.bytes[i] = static_cast<std::uint8_t>('0' + number.magnitude % 10);
    }
    if (number.negative) field.bytes[field.length - 1] += 'p' - '0';
    return true;
}

bool store_half_bytes(const Field& field, Whole number) {
    const int half_bytes = 2 * field.length - 1;
    const int digits = field.digits > 0 ? std::min(field.digits, half_bytes) : half_bytes;
    if (!has_place(number.magnitude, digits)) return false;
    if (number.negative && field.type != PACKED_SIGNED) return false;
    const unsigned sign = field.type != PACKED_SIGNED ? 0xF : number.negative ? 0xD : 0xC;
    field.bytes[field.length - 1] = static_cast<std::uint8_t>(number.magnitude % 10 << 4 | sign);
    number.magnitude /= 10;
    for (int i = field.length - 2; i >= 0; --i, number.magnitude /= 100) {
        const std::uint64_t pair = number.magnitude % 100;
        field.bytes[i] = static_cast<std::uint8_t>(pair / 10 << 4 | pair % 10);
    }
    return true;
}

bool store_bits(const Field& field, Whole number) {
    if (field.length > 8) return false;
    const bool is_big = field.type == BINARY_SIGNED || field.type == BINARY_UNSIGNED;
    const bool is_signed = field.type == BINARY_SIGNED || field.type == NATIVE_SIGNED;
    const int bits = 8 * field.length - (is_signed ? 1 : 0);
    const bool cuts = field.has(FIELD_TRUNCATE) && field.digits > 0;
    if (number.negative && !is_signed) return false;
    if (bits < 64 && number.magnitude >> bits != 0) return false;
    if (cuts && !has_place(number.magnitude, field.digits)) return false;
    std::uint64_t left = number.negative ? ~number.magnitude + 1 : number.magnitude;
    for (int i = 0; i < field.length; ++i, left >>= 8) {
        field.bytes[is_big ? field.length - 1 - i : i] = static_cast<std::uint8_t>(left);
    }
    return true;
}

}  // namespace

bool store_quickly(const XfdDataDesc& text, const XfdDataDesc& target) {
    const Field field = field_of(target);
    Whole number;
    if (text.address == nullptr || text.length <= 0 || field.length == 0) return false;
    if (field.scale > 0 || !parse_whole(text, field.scale, number)) return false;
    switch (field.type) {
        case DISPLAY_UNSIGNED:
        case DISPLAY_SIGN_TRAILING:
            return store_digits(field, number);
        case PACKED_SIGNED:
        case PACKED_UNSIGNED:
            return store_half_bytes(field, number);
        case BINARY_SIGNED:
        case BINARY_UNSIGNED:
        case NATIVE_SIGNED:
        case NATIVE_UNSIGNED:
            return store_bits(field, number);
        default:
            return false;
    }
}

}  // namespace records::numbers
