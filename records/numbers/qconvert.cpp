// The public conversions, and the count of data exceptions.
#include "records/numbers.h"

#include <algorithm>

#include "records/numbers/decimals.h"
#include "records/numbers/fields.h"
#include "records/numbers/number_text.h"
#include "records/numbers/quick_number.h"
#include "records/numbers/quick_text.h"

namespace records {
namespace {

thread_local std::uint64_t exception_count = 0;

bool counted(bool ok) {
    if (!ok) ++exception_count;
    return ok;
}

char decimal_point(const XfdDataDesc& numeric) {
    return (field_extra(numeric).flags & FIELD_DECIMAL_COMMA) != 0 ? ',' : '.';
}

std::span<char> text_of(const XfdDataDesc& data) {
    if (data.address == nullptr || data.length <= 0) return {};
    return {static_cast<char*>(data.address), static_cast<std::size_t>(data.length)};
}

bool text_to_number(const XfdDataDesc& text, char point, Decimal& out) {
    const std::span<char> characters = text_of(text);
    return numbers::parse_text({characters.data(), characters.size()}, point, out);
}

bool is_floating(int type) {
    return type == FLOAT_NATIVE || type == FLOAT_HEX;
}

bool number_to_text(const Decimal& number, bool floating, char point, const XfdDataDesc& text) {
    if (floating) return numbers::write_shortest(number, point, text_of(text));
    return numbers::write_fixed(number, std::max(0, -text.scale), point, text_of(text));
}

}  // namespace

bool decode_field(const XfdDataDesc& data, Decimal& out) {
    return counted(numbers::read_field(numbers::field_of(data), out));
}

bool encode_field(const Decimal& number, const XfdDataDesc& data) {
    return counted(numbers::store_field(numbers::field_of(data), number));
}

bool parse_number(std::string_view text, Decimal& out) {
    return counted(numbers::parse_text(text, '.', out));
}

int compare(const Decimal& first, const Decimal& second) {
    using numbers::is_zero;
    const auto sign_of = [](const Decimal& number) {
        return is_zero(number) ? 0 : number.negative ? -1 : 1;
    };
    const int sign = sign_of(first);
    if (sign != sign_of(second)) return sign < sign_of(second) ? -1 : 1;
    if (sign == 0) return 0;
    return sign * numbers::compare_magnitudes(first, second);
}

std::uint64_t data_exceptions() {
    return exception_count;
}

void reset_data_exceptions() {
    exception_count = 0;
}

namespace {

// Any number, whatever it takes. Apart, so that the quick ways pay nothing for it.
[[gnu::noinline]] int convert_any(XfdDataDesc& destination, const XfdDataDesc& source) {
    const bool from_field = is_numeric_type(source.type);
    const bool to_field = is_numeric_type(destination.type);
    // `extra` of a text descriptor is not set, so the decimal point is the numeric field's.
    Decimal number;
    const bool valid =
        from_field ? numbers::read_field(numbers::field_of(source), number)
                   : text_to_number(source, to_field ? decimal_point(destination) : '.', number);
    const bool fits = to_field
                          ? numbers::store_field(numbers::field_of(destination), number)
                          : number_to_text(number, is_floating(source.type),
                                           from_field ? decimal_point(source) : '.', destination);
    return counted(valid && fits) ? 1 : 0;
}

}  // namespace

}  // namespace records

extern "C" int Qconvert(XfdDataDesc* destination, const XfdDataDesc* source, int /*mode*/) {
    using namespace records;
    if (destination == nullptr || source == nullptr) return 0;
    const bool from_field = is_numeric_type(source->type);
    const bool to_field = is_numeric_type(destination->type);
    if (from_field && !to_field && numbers::write_quickly(*source, *destination)) return 1;
    if (!from_field && to_field && numbers::store_quickly(*source, *destination)) return 1;
    return convert_any(*destination, *source);
}
