#include "records/numbers/quick_text.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "records/numbers/fields.h"

namespace records::numbers {
namespace {

constexpr int MOST_DIGITS = 18;

struct Whole {
    std::uint64_t magnitude = 0;
    bool negative = false;
};

// Digits only: no sign over the last of them.
bool read_digits(const Field& field, Whole& out) {
    constexpr unsigned ELSEWHERE = FIELD_EBCDIC_TEXT | FIELD_STORED_POINT | FIELD_STORED_COMMA;
    if (field.length > MOST_DIGITS || (field.flags & ELSEWHERE) != 0) return false;
    unsigned bad = 0;
    for (int i = 0; i < field.length; ++i) {
        const unsigned digit = field.bytes[i] - unsigned{'0'};
        bad |= digit > 9 ? 1U : 0U;
        out.magnitude = out.magnitude * 10 + digit;
    }
    return bad == 0;
}

bool read_half_bytes(const Field& field, Whole& out) {
    const int half_bytes = 2 * field.length - 1;
    if (half_bytes > MOST_DIGITS) return false;
    const bool has_unused = field.digits > 0 && field.digits == half_bytes - 1;
    if (has_unused ? field.bytes[0] >> 4 != 0 : field.digits < half_bytes) return false;
    unsigned bad = 0;
    for (int i = 0; i + 1 < field.length; ++i) {
        const unsigned high = field.bytes[i] >> 4;
        const unsigned low = field.bytes[i] & 0xF;
        bad |= high > 9 || low > 9 ? 1U : 0U;
        out.magnitude = out.magnitude * 100 + high * 10 + low;
    }
    const unsigned last = field.bytes[field.length - 1] >> 4;
    const unsigned sign = field.bytes[field.length - 1] & 0xF;
    out.magnitude = out.magnitude * 10 + last;
    out.negative = sign == 0xD;
    const bool has_sign =
        sign == 0xC || sign == 0xF || (sign == 0xD && field.type == PACKED_SIGNED);
    return bad == 0 && last <= 9 && has_sign;
}

bool read_bits(const Field& field, Whole& out) {
    if (field.length > 8) return false;
    const bool is_big = field.type == BINARY_SIGNED || field.type == BINARY_UNSIGNED;
    const bool is_signed = field.type == BINARY_SIGNED || field.type == NATIVE_SIGNED;
    std::uint64_t bits = 0;
    for (int i = 0; i < field.length; ++i) {
        bits = bits << 8 | field.bytes[is_big ? i : field.length - 1 - i];
    }
    const int unused = 64 - 8 * field.length;
    out.negative = is_signed && (bits >> (8 * field.length - 1)) != 0;
    out.magnitude = out.negative ? (~bits + 1) << unused >> unused : bits;
    return true;
}

bool read_whole(const Field& field, Whole& out) {
    if (field.length == 0) return false;
    switch (field.type) {
        case DISPLAY_UNSIGNED:
        case DISPLAY_SIGN_TRAILING:
            return read_digits(field, out);
        case PACKED_SIGNED:
        case PACKED_UNSIGNED:
            return read_half_bytes(field, out);
        case BINARY_SIGNED:
        case BINARY_UNSIGNED:
        case NATIVE_SIGNED:
        case NATIVE_UNSIGNED:
            return read_bits(field, out);
        default:
            return false;
    }
}

constexpr std::array<char, 200> make_pairs() {
    std::array<char, 200> pairs{};
    for (std::size_t i = 0; i < pairs.size(); i += 2) {
        pairs[i] = static_cast<char>('0' + i / 20);
        pairs[i + 1] = static_cast<char>('0' + i / 2 % 10);
    }
    return pairs;
}
constexpr auto PAIRS_OF_DIGITS = make_pairs();

// The digits of a number, right-justified, without leading zeros but at least `least` of them.
class Digits {
  public:
    Digits(std::uint64_t value, int least) {
        for (; value >= 100; value /= 100) {
            first_ -= 2;
            std::memcpy(first_, &PAIRS_OF_DIGITS[2 * (value % 100)], 2);
        }
        for (; value != 0; value /= 10) *--first_ = static_cast<char>('0' + value % 10);
        while (count() < least) *--first_ = '0';
    }
    Digits(const Digits&) = delete;
    Digits& operator=(const Digits&) = delete;

    const char* first() const { return first_; }
    int count() const { return static_cast<int>(text_ + sizeof text_ - first_); }

  private:
    char text_[20];  // of 64 bits
    char* first_ = text_ + sizeof text_;
};

}  // namespace

bool write_quickly(const XfdDataDesc& source, const XfdDataDesc& text) {
    const Field field = field_of(source);
    const int decimals = std::max(0, -text.scale);
    if (text.address == nullptr || field.scale != -decimals || decimals > MOST_DIGITS) return false;
    Whole number;
    if (!read_whole(field, number)) return false;
    const Digits digits(number.magnitude, decimals);
    const int integers = digits.count() - decimals;
    const int used = (number.negative ? 1 : 0) + integers + (decimals > 0 ? decimals + 1 : 0);
    const bool has_room_for_zero = used < text.length;
    if (used > text.length || (digits.count() == 0 && !has_room_for_zero)) return false;
    char* out = static_cast<char*>(text.address);
    char* const end = out + text.length;
    if (number.negative) *out++ = '-';
    if (integers == 0 && has_room_for_zero) *out++ = '0';
    out = std::copy_n(digits.first(), integers, out);
    if (decimals > 0) {
        *out++ = field.has(FIELD_DECIMAL_COMMA) ? ',' : '.';
        out = std::copy_n(digits.first() + integers, decimals, out);
    }
    std::fill(out, end, ' ');
    return true;
}

}  // namespace records::numbers
