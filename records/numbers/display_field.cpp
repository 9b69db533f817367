// DISPLAY numbers: one character a digit, the sign overpunched on a digit or a character of its
// own, in ASCII or EBCDIC.
#include <algorithm>
#include <array>

#include "records/numbers/decimals.h"
#include "records/numbers/fields.h"

namespace records::numbers {
namespace {

// The characters of a field in its character set.
struct Characters {
    std::uint8_t zero;
    std::uint8_t blank;
    std::uint8_t plus;
    std::uint8_t minus;
    std::uint8_t point;
    std::uint8_t comma;
};

constexpr Characters ASCII{'0', ' ', '+', '-', '.', ','};
constexpr Characters EBCDIC{0xF0, 0x40, 0x4E, 0x60, 0x4B, 0x6B};

Characters characters_of(const Field& field) {
    return field.has(FIELD_EBCDIC_TEXT) ? EBCDIC : ASCII;
}

constexpr int NOWHERE = -1;

// Where digits and sign lie in the field.
struct Places {
    int first;      // of the digits
    int end;        // after the digits
    int overpunch;  // the digit that carries the sign, or NOWHERE
    int separate;   // the sign character, or NOWHERE
};

Places places_of(const Field& field) {
    const int length = field.length;
    switch (field.type) {
        case DISPLAY_SIGN_TRAILING:
            return {0, length, length - 1, NOWHERE};
        case DISPLAY_SIGN_LEADING:
            return {0, length, 0, NOWHERE};
        case DISPLAY_SIGN_TRAILING_SEPARATE:
            return {0, length - 1, NOWHERE, length - 1};
        case DISPLAY_SIGN_LEADING_SEPARATE:
            return {1, length, NOWHERE, 0};
        default:
            return {0, length, NOWHERE, NOWHERE};
    }
}

struct SignedDigit {
    unsigned digit;
    bool negative;
    bool valid;
};

// The low half of a byte as a digit, as good a guess as there is for one that is not a digit.
SignedDigit repaired_digit(unsigned byte) {
    const unsigned low = byte & 0xF;
    return {low <= 9 ? low : 0, false, false};
}

// An overpunched digit that is not simply a digit. Both ASCII conventions are understood.
SignedDigit overpunched_digit(unsigned byte, bool ebcdic_text) {
    if (ebcdic_text) {
        const unsigned zone = byte >> 4;
        if ((byte & 0xF) > 9 || zone < 0xA) return repaired_digit(byte);
        return {byte & 0xF, zone == 0xD || zone == 0xB, true};
    }
    if (byte >= 'p' && byte <= 'y') return {byte - 'p', true, true};
    if (byte == '{') return {0, false, true};
    if (byte == '}') return {0, true, true};
    if (byte >= 'A' && byte <= 'I') return {byte - 'A' + 1, false, true};
    if (byte >= 'J' && byte <= 'R') return {byte - 'J' + 1, true, true};
    return repaired_digit(byte);
}

unsigned overpunch_byte(unsigned digit, bool negative, const Field& field) {
    if (field.has(FIELD_EBCDIC_TEXT)) return (negative ? 0xD0U : 0xC0U) | digit;
    if (!field.has(FIELD_EBCDIC_SIGN)) return (negative ? 'p' : '0') + digit;
    if (digit == 0) return negative ? '}' : '{';
    return (negative ? 'J' : 'A') + digit - 1;
}

// Takes the digits from `first` up to `end` into an empty number if all of them are simple digits,
// as they nearly always are; looks at them without a branch for each. Gives the place after the
// digits taken, or `first`.
int take_plain_digits(const Field& field, int first, int end, unsigned zero, Decimal& out) {
    const std::uint8_t* digit = field.bytes + first;
    const std::uint8_t* digits_end = field.bytes + end;
    while (digit < digits_end && *digit == zero) ++digit;
    const auto count = static_cast<int>(digits_end - digit);
    std::uint8_t* values = out.digits.data();
    unsigned bad = 0;
    for (int i = 0; i < count; ++i) {
        const unsigned value = digit[i] - zero;
        values[i] = static_cast<std::uint8_t>(value);
        bad |= value > 9 ? 1U : 0U;
    }
    if (bad != 0) return first;
    out.count = count;
    return end;
}

bool is_blank(const Field& field, const Characters& characters) {
    return std::all_of(field.bytes, field.bytes + field.length,
                       [&](std::uint8_t byte) { return byte == characters.blank; });
}

// A field that holds its decimal point, taken apart: the other bytes, and the point.
class PointedField {
  public:
    explicit PointedField(const Field& field) : field_(field), plain_(field) {
        const auto length = static_cast<std::size_t>(field.length);
        const int point = places_of(field).end - 1 + std::min(field.scale, 0);
        if (length > bytes_.size() || point < 0 || point >= field.length) return;
        point_ = field.bytes + point;
        std::copy(field.bytes + point + 1, field.bytes + length,
                  std::copy(field.bytes, point_, bytes_.begin()));
        plain_.bytes = bytes_.data();
        plain_.length = field.length - 1;
        plain_.flags &= ~POINT_FLAGS;
    }
    PointedField(const PointedField&) = delete;
    PointedField& operator=(const PointedField&) = delete;

    static bool is_pointed(const Field& field) { return (field.flags & POINT_FLAGS) != 0; }
    bool is_usable() const { return point_ != nullptr; }
    // The field without its point.
    const Field& plain() const { return plain_; }
    bool has_point() const { return *point_ == expected(); }
    // Puts what has been stored without the point back, with it.
    void put_back() const {
        const bool blank = is_blank(plain_, characters_of(field_));
        const std::uint8_t point = blank ? characters_of(field_).blank : expected();
        const auto before = point_ - field_.bytes;
        std::copy_n(bytes_.begin(), before, field_.bytes);
        *point_ = point;
        std::copy_n(bytes_.begin() + before, plain_.length - before, point_ + 1);
    }

  private:
    static constexpr unsigned POINT_FLAGS = FIELD_STORED_POINT | FIELD_STORED_COMMA;
    static constexpr std::size_t LONGEST = 64;  // more than any picture gives

    std::uint8_t expected() const {
        const Characters characters = characters_of(field_);
        return field_.has(FIELD_STORED_COMMA) ? characters.comma : characters.point;
    }

    const Field& field_;
    Field plain_;
    std::array<std::uint8_t, LONGEST> bytes_;  // of plain_
    std::uint8_t* point_ = nullptr;            // in the field
};

bool read_pointed(const Field& field, Decimal& out) {
    set_zero(out);
    const PointedField pointed(field);
    if (!pointed.is_usable()) return false;
    const bool valid = read_display(pointed.plain(), out);
    const bool may_be_blank = field.has(FIELD_BLANK_WHEN_ZERO);
    return valid &&
           (pointed.has_point() || (may_be_blank && is_blank(field, characters_of(field))));
}

bool store_pointed(const Field& field, const Decimal& number) {
    const PointedField pointed(field);
    if (!pointed.is_usable()) return false;
    const bool kept = store_display(pointed.plain(), number);
    pointed.put_back();
    return kept;
}

}  // namespace

bool read_display(const Field& field, Decimal& out) {
    if (PointedField::is_pointed(field)) return read_pointed(field, out);
    set_zero(out);
    const Characters characters = characters_of(field);
    const Places places = places_of(field);
    if (places.end <= places.first) return false;
    out.scale = field.scale;

    bool valid = true;
    bool negative = false;
    const std::uint8_t* bytes = field.bytes;
    const int first = std::max(places.first, places.end - Decimal::MAX_DIGITS);
    for (int i = places.first; i < first; ++i) {
        if (bytes[i] != characters.zero) valid = false;
    }
    const int plain_end = places.overpunch == places.end - 1 ? places.end - 1 : places.end;
    const int taken = take_plain_digits(field, first, plain_end, characters.zero, out);
    DigitWriter digits(out);
    for (int i = taken; i < places.end; ++i) {
        const unsigned byte = bytes[i];
        unsigned digit = byte - characters.zero;
        if (digit > 9) {
            const SignedDigit other = i == places.overpunch
                                          ? overpunched_digit(byte, field.has(FIELD_EBCDIC_TEXT))
                                          : repaired_digit(byte);
            digit = other.digit;
            negative = negative || other.negative;
            valid = valid && other.valid;
        }
        digits.append(digit);
    }
    digits.finish();
    if (places.separate != NOWHERE) {
        const std::uint8_t sign = field.bytes[places.separate];
        negative = sign == characters.minus;
        if (!negative && sign != characters.plus) valid = false;
    }
    out.negative = negative;
    return valid || (field.has(FIELD_BLANK_WHEN_ZERO) && is_blank(field, characters));
}

bool store_display(const Field& field, const Decimal& number) {
    if (PointedField::is_pointed(field)) return store_pointed(field, number);
    const Characters characters = characters_of(field);
    const Places places = places_of(field);
    if (places.end <= places.first) return false;

    std::uint8_t* digits = field.bytes + places.first;
    const int width = places.end - places.first;
    const bool kept = place_digits(number, field.scale, width, characters.zero, digits);
    if (field.has(FIELD_BLANK_WHEN_ZERO) &&
        std::all_of(digits, digits + width,
                    [&](std::uint8_t digit) { return digit == characters.zero; })) {
        std::fill_n(field.bytes, field.length, characters.blank);
        return kept;
    }
    if (places.overpunch != NOWHERE) {
        std::uint8_t& byte = field.bytes[places.overpunch];
        byte = static_cast<std::uint8_t>(overpunch_byte(byte & 0xF, number.negative, field));
    } else if (places.separate != NOWHERE) {
        field.bytes[places.separate] = number.negative ? characters.minus : characters.plus;
    } else if (number.negative && !is_zero(number)) {
        return false;
    }
    return kept;
}

}  // namespace records::numbers
