#include "records/layout/conditions/condition_evaluator.h"

#include <algorithm>
#include <cstring>

#include "records/layout/conditions/code_page.h"
#include "records/layout/conditions/comparison.h"
#include "records/layout/counter.h"

namespace records {
namespace {

using Relation = Expression::Relation;

// A number as a text is compared with it: its digits, after a minus sign.
std::string characters_of(const std::string& number) {
    std::string digits(number.starts_with('-') ? "-" : "");
    std::copy_if(number.begin(), number.end(), std::back_inserter(digits),
                 [](char c) { return c >= '0' && c <= '9'; });
    return digits;
}

bool relation_holds(Relation relation, int order) {
    switch (relation) {
        case Relation::equal:
            return order == 0;
        case Relation::not_equal:
            return order != 0;
        case Relation::less:
            return order < 0;
        case Relation::less_equal:
            return order <= 0;
        case Relation::greater:
            return order > 0;
        case Relation::greater_equal:
            return order >= 0;
    }
    return false;
}

struct Bytes {
    const std::uint8_t* data;
    std::size_t length;
};

// Order of a text's rest against padding.
int compare_rest(Bytes rest, std::uint8_t pad) {
    for (std::size_t i = 0; i < rest.length; ++i) {
        if (rest.data[i] != pad) return rest.data[i] < pad ? -1 : 1;
    }
    return 0;
}

// As COBOL compares texts: the shorter one is taken to end in blanks.
int compare_padded(Bytes first, Bytes second, std::uint8_t pad) {
    const std::size_t common = std::min(first.length, second.length);
    const int order = std::memcmp(first.data, second.data, common);
    if (order != 0) return order;
    if (first.length > common) {
        return compare_rest({first.data + common, first.length - common}, pad);
    }
    return -compare_rest({second.data + common, second.length - common}, pad);
}

// Order against one byte sequence repeated as often as the text is long.
int compare_repeated(Bytes text, const std::string& sequence) {
    for (std::size_t i = 0; i < text.length; ++i) {
        const auto expected = static_cast<std::uint8_t>(sequence[i % sequence.size()]);
        if (text.data[i] != expected) return text.data[i] < expected ? -1 : 1;
    }
    return 0;
}

Bytes bytes_at(const Operand& item, const std::uint8_t* record,
               const std::vector<std::int32_t>& shifts) {
    return {record + item.offset + shifts[static_cast<std::size_t>(item.tables)],
            static_cast<std::size_t>(item.length)};
}

Decimal number_at(const Operand& item, Bytes bytes) {
    Decimal number;
    decode_field(descriptor_of(item, bytes.data), number);
    return number;
}

bool is_ascii_digit(std::uint8_t c) {
    return c >= '0' && c <= '9';
}

constexpr std::size_t MAX_DIGITS_SHOWN = MAX_DIGITS_DESCRIBED;
using ShownDigits = std::array<std::uint8_t, MAX_DIGITS_SHOWN>;

// The digits of the item's picture, as the record's encoding has them.
Bytes shown_digits(const Operand& item, Bytes bytes, bool ebcdic, ShownDigits& room) {
    const Decimal number = number_at(item, bytes);
    const auto size =
        std::min(static_cast<std::size_t>(std::max(item.form.stored_digits, 1)), room.size());
    const int zero = ebcdic ? 0xF0 : '0';
    std::fill_n(room.begin(), size, static_cast<std::uint8_t>(zero));
    const auto count = std::min(static_cast<std::size_t>(number.count), size);
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint8_t digit = number.digits[static_cast<std::size_t>(number.count) - 1 - i];
        room[size - 1 - i] = static_cast<std::uint8_t>(zero + digit);
    }
    return {room.data(), size};
}

// COBOL compares a text of digits only that is too large for a DISPLAY number as a number.
bool is_above_all(const Operand& item, const std::string& text) {
    const bool is_digits = !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
        return is_ascii_digit(static_cast<std::uint8_t>(c));
    });
    if (!is_display(item) || !is_digits) return false;
    const std::size_t first = std::min(text.find_first_not_of('0'), text.size());
    const int integer_digits = item.form.stored_digits + item.form.stored_scale;
    return static_cast<int>(text.size() - first) > integer_digits;
}

// A digit that carries the sign, as cobc writes them or in EBCDIC's convention.
bool is_overpunched(std::uint8_t byte, bool ebcdic_bytes, bool ebcdic_sign) {
    if (ebcdic_bytes) return (byte & 0x0F) <= 9 && byte >= 0xC0;
    if (is_ascii_digit(byte)) return true;
    if (!ebcdic_sign) return byte >= 'p' && byte <= 'y';
    return byte == '{' || byte == '}' || (byte >= 'A' && byte <= 'R');
}

bool is_display_number(const Operand& item, Bytes bytes) {
    const FieldType type = item.form.type;
    const bool ebcdic = (item.form.flags & FIELD_EBCDIC_TEXT) != 0;
    const bool leading = type == DISPLAY_SIGN_LEADING || type == DISPLAY_SIGN_LEADING_SEPARATE;
    const std::size_t sign = leading ? 0 : bytes.length - 1;
    for (std::size_t i = 0; i < bytes.length; ++i) {
        const std::uint8_t c = ascii_of(bytes.data[i], ebcdic);
        if (i != sign || type == DISPLAY_UNSIGNED) {
            if (!is_ascii_digit(c)) return false;
        } else if (type == DISPLAY_SIGN_TRAILING || type == DISPLAY_SIGN_LEADING) {
            const bool sign_ebcdic = (item.form.flags & FIELD_EBCDIC_SIGN) != 0;
            if (!is_overpunched(bytes.data[i], ebcdic, sign_ebcdic)) return false;
        } else if (c != '+' && c != '-') {
            return false;
        }
    }
    return true;
}

bool is_packed_number(const Operand& item, Bytes bytes) {
    const bool with_sign = item.form.type != PACKED_NO_SIGN;
    for (std::size_t i = 0; i < bytes.length; ++i) {
        const int high = bytes.data[i] >> 4;
        const int low = bytes.data[i] & 0x0F;
        if (high > 9) return false;
        const bool last = with_sign && i + 1 == bytes.length;
        if (last ? low < 10 : low > 9) return false;
    }
    return true;
}

bool is_of_class(Expression::Class tested, const Operand& item, Bytes bytes, bool ebcdic) {
    const Bytes text = bytes;
    if (tested == Expression::Class::numeric && is_numeric(item)) {
        if (is_display(item)) return is_display_number(item, bytes);
        const bool packed = item.form.type >= PACKED_SIGNED && item.form.type <= PACKED_NO_SIGN;
        return !packed || is_packed_number(item, bytes);
    }
    return std::all_of(text.data, text.data + text.length, [&](std::uint8_t byte) {
        const std::uint8_t c = ascii_of(byte, ebcdic);
        if (tested == Expression::Class::numeric) return is_ascii_digit(c);
        return c == ' ' || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    });
}

}  // namespace

ConditionEvaluator::ConditionEvaluator(const Test& test, bool ebcdic)
    : ebcdic_(ebcdic), root_(build(test)) {}

ConditionEvaluator::Part ConditionEvaluator::build(const Test& test) const {
    Part part;
    part.relation = test.relation;
    part.class_tested = test.class_tested;
    part.left = test.left;
    switch (test.kind) {
        case Test::Kind::comparison:
            build_comparison(test, part);
            return part;
        case Test::Kind::class_test:
            part.kind = Kind::is_class;
            return part;
        case Test::Kind::logical_and:
            part.kind = Kind::all_of;
            break;
        case Test::Kind::logical_or:
            part.kind = Kind::any_of;
            break;
        case Test::Kind::logical_not:
            part.kind = Kind::none_of;
            break;
        case Test::Kind::is_first:
            part.kind = Kind::is_first;
            return part;
        case Test::Kind::is_last:
            part.kind = Kind::is_last;
            return part;
    }
    for (const Test& each : test.operands) part.parts.push_back(build(each));
    return part;
}

void ConditionEvaluator::build_comparison(const Test& test, Part& part) const {
    const Operand& right = test.right;
    part.right = right;
    part.pad = static_cast<std::uint8_t>(in_encoding(" ", ebcdic_)[0]);
    part.right_is_item = right.kind == Operand::Kind::item;
    if (compares_numbers(test)) {
        part.kind = Kind::numbers;
        if (part.right_is_item) return;
        part.number = std::make_unique<Decimal>();
        if (right.kind != Operand::Kind::figurative) parse_number(right.value, *part.number);
        return;
    }
    if (right.kind == Operand::Kind::text && is_numeric(part.left)) {
        part.kind = is_above_all(part.left, right.value) ? Kind::above_all
                    : shows_digits(part.left)            ? Kind::digits
                                                         : Kind::bytes;
    }
    switch (right.kind) {
        case Operand::Kind::item:
            return;
        case Operand::Kind::hex:
            part.constant = bytes_of_hex(right.value);
            break;
        case Operand::Kind::figurative:
            part.constant = static_cast<char>(figurative_byte(right.value, ebcdic_));
            break;
        case Operand::Kind::number:
            part.constant = in_encoding(characters_of(right.value), ebcdic_);
            break;
        default:
            part.constant = in_encoding(right.value, ebcdic_);
    }
    const bool equality = test.relation == Relation::equal || test.relation == Relation::not_equal;
    const bool is_byte = part.left.length == 1 && part.constant.size() == 1;
    if (part.kind == Kind::bytes && is_byte && equality) {
        part.kind = Kind::byte_equal;
    }
}

bool ConditionEvaluator::holds(const std::uint8_t* record, const std::vector<std::int32_t>& shifts,
                               RecordPosition position) const {
    return holds(root_, record, shifts, ebcdic_, position);
}

bool ConditionEvaluator::holds(const Part& part, const std::uint8_t* record,
                               const std::vector<std::int32_t>& shifts, bool ebcdic,
                               RecordPosition position) {
    const auto each = [&](const Part& inner) {
        return holds(inner, record, shifts, ebcdic, position);
    };
    switch (part.kind) {
        case Kind::all_of:
            return std::all_of(part.parts.begin(), part.parts.end(), each);
        case Kind::any_of:
            return std::any_of(part.parts.begin(), part.parts.end(), each);
        case Kind::none_of:
            return std::none_of(part.parts.begin(), part.parts.end(), each);
        case Kind::is_first:
            return position.is_first;
        case Kind::is_last:
            return position.is_last;
        default:
            break;
    }
    if (part.kind == Kind::above_all) return relation_holds(part.relation, -1);
    const Bytes left = bytes_at(part.left, record, shifts);
    if (part.kind == Kind::byte_equal) {
        const bool same = left.data[0] == static_cast<std::uint8_t>(part.constant[0]);
        return same == (part.relation == Relation::equal);
    }
    if (part.kind == Kind::is_class) {
        return is_of_class(part.class_tested, part.left, left, ebcdic);
    }
    if (part.kind == Kind::numbers) {
        const Decimal first = number_at(part.left, left);
        const int order =
            part.number
                ? compare(first, *part.number)
                : compare(first, number_at(part.right, bytes_at(part.right, record, shifts)));
        return relation_holds(part.relation, order);
    }
    if (part.right_is_item) {
        const Bytes right = bytes_at(part.right, record, shifts);
        return relation_holds(part.relation, compare_padded(left, right, part.pad));
    }
    const bool repeated =
        part.right.kind == Operand::Kind::figurative || part.right.kind == Operand::Kind::all;
    const Bytes constant{reinterpret_cast<const std::uint8_t*>(part.constant.data()),
                         part.constant.size()};
    if (part.kind == Kind::digits) {
        ShownDigits room;
        const Bytes digits = shown_digits(part.left, left, ebcdic, room);
        return relation_holds(part.relation, compare_padded(digits, constant, part.pad));
    }
    return relation_holds(part.relation, repeated ? compare_repeated(left, part.constant)
                                                  : compare_padded(left, constant, part.pad));
}

}  // namespace records
