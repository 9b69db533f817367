#include "records/numbers/quick_text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <string_view>

#include "host/ascii_words.h"
#include "records/numbers/fields.h"

namespace records::numbers {
namespace {

constexpr int MOST_DIGITS = 18;

struct Whole {
    std::uint64_t magnitude = 0;
    bool negative = false;
};

// The digits of a number as text.
struct DigitText {
    std::string_view digits;
    bool negative = false;
};

// The digit values of a word of text, and whether they are digits.
struct DigitValues {
    explicit DigitValues(ascii::Word text) : values(text ^ '0' * ascii::EACH) {}
    bool are_digits() const {
        constexpr ascii::Word ABOVE_NINE = 0x76 * ascii::EACH;
        return ((values | (values + ABOVE_NINE)) & ascii::HIGH_BITS) == 0;
    }
    std::size_t leading_zeros() const {
        return static_cast<std::size_t>(std::countr_zero(values)) / 8;
    }

    ascii::Word values;
};

// Digits only: no sign over the last of them. `least`: leading zeros are left out while there are
// more digits.
bool find_digits(const Field& field, std::size_t least, DigitText& out) {
    constexpr unsigned ELSEWHERE = FIELD_EBCDIC_TEXT | FIELD_STORED_POINT | FIELD_STORED_COMMA;
    const auto length = static_cast<std::size_t>(field.length);
    if (length > MOST_DIGITS || length < least || (field.flags & ELSEWHERE) != 0) return false;
    const char* const text = reinterpret_cast<const char*>(field.bytes);
    std::size_t zeros = 0;
    for (std::size_t i = 0; i < length; i += ascii::WORD_SIZE) {
        const std::size_t size = std::min(length - i, ascii::WORD_SIZE);
        ascii::Word word = ascii::load_short(text + i, size);
        constexpr ascii::Word ZEROS_FOR_BLANKS = 0x10 * ascii::EACH;
        if (size < ascii::WORD_SIZE) word |= ZEROS_FOR_BLANKS << (8 * size);
        const DigitValues digits(word);
        if (!digits.are_digits()) return false;
        if (zeros == i) zeros += digits.leading_zeros();
    }
    zeros = std::min(zeros, length - least);
    out.digits = {text + zeros, length - zeros};
    return true;
}

bool has_half_bytes(const Field& field) {
    const int half_bytes = 2 * field.length - 1;
    if (half_bytes > MOST_DIGITS) return false;
    const bool has_unused = field.digits > 0 && field.digits == half_bytes - 1;
    return has_unused ? field.bytes[0] >> 4 == 0 : field.digits >= half_bytes;
}

// The sign in the last half byte. False: it is none.
bool read_sign(const Field& field, bool& negative) {
    const unsigned sign = field.bytes[field.length - 1] & 0xF;
    negative = sign == 0xD;
    return sign == 0xC || sign == 0xF || (negative && field.type == PACKED_SIGNED);
}

// Half bytes of up to four bytes, all at once.
class HalfBytes {
  public:
    static constexpr int MOST_BYTES = 4;

    explicit HalfBytes(const Field& field) {
        const auto length = static_cast<std::size_t>(field.length);
        const char* const bytes = reinterpret_cast<const char*>(field.bytes);
        ascii::Word bits = __builtin_bswap64(ascii::load_short(bytes, length));
        bits >>= 8 * (ascii::WORD_SIZE - length) + 4;
        bits = (bits | bits << 16) & 0x0000FFFF0000FFFFU;
        bits = (bits | bits << 8) & 0x00FF00FF00FF00FFU;
        bits = (bits | bits << 4) & 0x0F0F0F0F0F0F0F0FU;
        count_ = ascii::WORD_SIZE - static_cast<std::size_t>(std::countl_zero(bits)) / 8;
        const ascii::Word text = __builtin_bswap64(bits | '0' * ascii::EACH);
        are_digits_ = DigitValues(text).are_digits();
        std::memcpy(text_, &text, sizeof text);
    }

    bool are_digits() const { return are_digits_; }
    std::string_view digits(std::size_t least) const {
        const std::size_t count = std::max(count_, least);
        return {text_ + sizeof text_ - count, count};
    }

  private:
    char text_[ascii::WORD_SIZE];
    std::size_t count_;
    bool are_digits_;
};

bool read_half_bytes(const Field& field, Whole& out) {
    if (!has_half_bytes(field)) return false;
    unsigned bad = 0;
    for (int i = 0; i + 1 < field.length; ++i) {
        const unsigned high = field.bytes[i] >> 4;
        const unsigned low = field.bytes[i] & 0xF;
        bad |= high > 9 || low > 9 ? 1U : 0U;
        out.magnitude = out.magnitude * 100 + high * 10 + low;
    }
    const unsigned last = field.bytes[field.length - 1] >> 4;
    out.magnitude = out.magnitude * 10 + last;
    const bool has_sign = read_sign(field, out.negative);
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
    switch (field.type) {
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

// Writes a number with its decimals. False when it does not fit.
[[gnu::always_inline]] inline bool put(const DigitText& number, std::size_t decimals, char point,
                                       const XfdDataDesc& text) {
    const std::string_view digits = number.digits;
    const std::size_t integers = digits.size() - decimals;
    const std::size_t used =
        (number.negative ? 1U : 0U) + integers + (decimals > 0 ? decimals + 1 : 0);
    const auto room = static_cast<std::size_t>(std::max(text.length, 0));
    const bool has_room_for_zero = used < room;
    if (used > room || (digits.empty() && !has_room_for_zero)) return false;
    char* out = static_cast<char*>(text.address);
    char* const end = out + room;
    if (number.negative) *out++ = '-';
    if (integers == 0 && has_room_for_zero) *out++ = '0';
    out = std::copy_n(digits.data(), integers, out);
    if (decimals > 0) {
        *out++ = point;
        out = std::copy_n(digits.data() + integers, decimals, out);
    }
    std::fill(out, end, ' ');
    return true;
}

}  // namespace

bool write_quickly(const XfdDataDesc& source, const XfdDataDesc& text) {
    const Field field = field_of(source);
    const int least = std::max(0, -text.scale);
    if (text.address == nullptr || field.length == 0) return false;
    if (field.scale != -least || least > MOST_DIGITS) return false;
    const auto decimals = static_cast<std::size_t>(least);
    const char point = field.has(FIELD_DECIMAL_COMMA) ? ',' : '.';
    if (field.type == DISPLAY_UNSIGNED || field.type == DISPLAY_SIGN_TRAILING) {
        DigitText number;
        return find_digits(field, decimals, number) && put(number, decimals, point, text);
    }
    const bool is_packed = field.type == PACKED_SIGNED || field.type == PACKED_UNSIGNED;
    if (is_packed && field.length <= HalfBytes::MOST_BYTES && decimals <= ascii::WORD_SIZE) {
        DigitText number;
        if (!has_half_bytes(field) || !read_sign(field, number.negative)) return false;
        const HalfBytes half_bytes(field);
        number.digits = half_bytes.digits(decimals);
        return half_bytes.are_digits() && put(number, decimals, point, text);
    }
    Whole number;
    if (!read_whole(field, number)) return false;
    const Digits digits(number.magnitude, least);
    return put({{digits.first(), static_cast<std::size_t>(digits.count())}, number.negative},
               decimals, point, text);
}

}  // namespace records::numbers
