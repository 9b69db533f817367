#include "conversion/texts/lost_digits.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

#include "records/field_types.h"
#include "records/numbers.h"

namespace conversion {

namespace {

struct Shape {
    std::size_t decimals;  // of a text without an exponent, not counting zeros at the end
    bool has_exponent;
};

Shape shape_of(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size() && text[i] >= '0' && text[i] <= '9') ++i;
    std::size_t point = text.size();
    std::size_t last = 0;  // digit that is not zero
    bool has_exponent = false;
    for (; i < text.size(); ++i) {
        const char c = text[i];
        if (c >= '1' && c <= '9') {
            last = i;
        } else if (c == '.') {
            point = std::min(point, i);
        } else if (c == 'e' || c == 'E') {
            has_exponent = true;
        }
    }
    return {last > point ? last - point : 0, has_exponent};
}

// What the field holds is not what the text says.
bool differs(std::string_view text, const XfdDataDesc& field) {
    records::Decimal wanted;
    records::Decimal held;
    if (!records::parse_number(text, wanted)) return false;
    if (!records::decode_field(field, held)) held.count = 0;  // blank when zero
    return records::compare(wanted, held) != 0;
}

// As many significant digits as the text has, of the number held.
template <typename Float>
bool is_rounded_as(const records::Decimal& wanted, const XfdDataDesc& field) {
    Float value;
    std::memcpy(&value, field.address, sizeof value);
    int count = wanted.count;
    while (count > 1 && wanted.digits[static_cast<std::size_t>(count - 1)] == 0) --count;
    std::array<char, records::Decimal::MAX_DIGITS + 16> text{};
    const char* const end = std::to_chars(text.data(), text.data() + text.size(), value,
                                          std::chars_format::scientific, std::max(count - 1, 0))
                                .ptr;
    records::Decimal held;
    const auto size = static_cast<std::size_t>(end - text.data());
    return value != 0 && records::parse_number({text.data(), size}, held) &&
           records::compare(wanted, held) == 0;
}

// A float holds the nearest number. It loses something when the text has more digits than that
// gives back, or is too small.
bool float_differs(std::string_view text, const XfdDataDesc& field) {
    constexpr std::size_t ALWAYS_KEPT = 6;  // characters, so at most as many digits
    const bool has_exponent = text.find_first_of("eE") != std::string_view::npos;
    if (text.size() <= ALWAYS_KEPT && !has_exponent) return false;
    if (!differs(text, field)) return false;
    records::Decimal wanted;
    if (!records::parse_number(text, wanted)) return false;
    if (field.type == records::FLOAT_HEX) return true;
    return field.length == sizeof(float) ? !is_rounded_as<float>(wanted, field)
                                         : !is_rounded_as<double>(wanted, field);
}

}  // namespace

bool loses_low_digits(std::string_view text, const XfdDataDesc& field) {
    if (field.type == records::FLOAT_NATIVE || field.type == records::FLOAT_HEX) {
        return float_differs(text, field);
    }
    const records::FieldExtra extra = records::field_extra(field);
    const int scale = extra.digits == 0 ? field.scale : extra.scale;
    // Few texts need the whole comparison.
    const Shape shape = shape_of(text);
    if (scale > 0 || shape.has_exponent) return differs(text, field);
    return shape.decimals > static_cast<std::size_t>(-scale);
}

}  // namespace conversion
