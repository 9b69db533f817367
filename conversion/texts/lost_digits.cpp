#include "conversion/texts/lost_digits.h"

#include "records/field_types.h"
#include "records/numbers.h"

namespace conversion {

namespace {

// Decimals of a text without an exponent, not counting zeros at the end.
std::size_t decimals_of(std::string_view text) {
    const std::size_t point = text.find('.');
    if (point == std::string_view::npos) return 0;
    const std::size_t last = text.find_last_of("123456789");
    return last == std::string_view::npos || last < point ? 0 : last - point;
}

// What the field holds is not what the text says.
bool differs(std::string_view text, const XfdDataDesc& field) {
    records::Decimal wanted;
    records::Decimal held;
    if (!records::parse_number(text, wanted)) return false;
    if (!records::decode_field(field, held)) held.count = 0;  // blank when zero
    return records::compare(wanted, held) != 0;
}

}  // namespace

bool loses_low_digits(std::string_view text, const XfdDataDesc& field) {
    if (field.type == records::FLOAT_NATIVE || field.type == records::FLOAT_HEX) return false;
    const records::FieldExtra extra = records::field_extra(field);
    const int scale = extra.digits == 0 ? field.scale : extra.scale;
    // Few texts need the whole comparison.
    const bool is_scaled = scale > 0 || text.find_first_of("eE") != std::string_view::npos;
    if (is_scaled) return differs(text, field);
    return decimals_of(text) > static_cast<std::size_t>(-scale);
}

}  // namespace conversion
