// Any bytes as a numeric field of any descriptor, and as a text: conversions stay inside their
// memory, write numbers, and a number once converted without a loss stays as it is.
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "records/field_types.h"
#include "records/numbers.h"

namespace {

using namespace records;

void require(bool holds) {
    if (!holds) std::abort();
}

// Text of the field as the descriptor's digits and scale ask for it.
int to_text(XfdDataDesc& field, std::string& text) {
    const int length = field.digits + (field.scale < 0 ? 2 : 1);
    text.assign(static_cast<std::size_t>(length > 0 ? length : 0), '?');
    XfdDataDesc to = field;
    to.type = TEXT;
    to.address = text.data();
    to.length = length;
    return Qconvert(&to, &field, 1);
}

int from_text(XfdDataDesc& field, std::string& text) {
    XfdDataDesc from = field;
    from.type = TEXT;
    from.address = text.data();
    from.length = static_cast<std::int32_t>(text.size());
    return Qconvert(&field, &from, 1);
}

// The number that a text must be.
Decimal number_in(std::string text, bool comma) {
    for (char& c : text) {
        if (comma && c == ',') c = '.';
    }
    Decimal value;
    require(text.find_first_not_of("-.0123456789 ") == text.npos);
    require(parse_number(text, value));
    return value;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t HEADER = 8;
    if (size < HEADER) return 0;
    const auto number = [&](std::size_t i) { return static_cast<std::int8_t>(data[i]); };
    std::vector<std::uint8_t> bytes(data + HEADER, data + size);
    XfdDataDesc field{.address = bytes.data(),
                      .length = static_cast<std::int32_t>(bytes.size()),
                      .type = static_cast<std::int16_t>(data[0] % 16),
                      .digits = number(1),
                      .scale = number(2),
                      .extra = {}};
    if (field.type == TEXT) return 0;
    set_field_extra(field, {number(3), number(4), data[5], {}});
    const bool comma = (data[5] & FIELD_DECIMAL_COMMA) != 0;

    std::string text;
    std::string again;
    const bool clean = to_text(field, text) == 1;
    if (is_numeric_type(field.type) && !text.empty()) {
        const Decimal value = number_in(text, comma);
        const bool stored = from_text(field, text) == 1;
        if (clean && stored && field.type != FLOAT_NATIVE) {
            require(to_text(field, again) == 1);
            require(compare(number_in(again, comma), value) == 0);
        }
    }
    std::string input(reinterpret_cast<const char*>(data + HEADER), size - HEADER);
    from_text(field, input);
    to_text(field, again);
    return 0;
}
