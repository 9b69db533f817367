#include "conversion/fields/counted_end.h"

#include <algorithm>
#include <string>
#include <vector>

#include "conversion/texts/text_form.h"
#include "records/field_types.h"
#include "records/numbers.h"

namespace conversion {

bool is_blank(const XfdItem& item, const std::uint8_t* bytes, const CharacterSet& characters) {
    const bool is_binary = item.format == XFD_FORMAT_BINARY;
    if (!is_binary && is_numeric_type(item.data.type)) {
        XfdDataDesc data = item.data;
        data.address = const_cast<std::uint8_t*>(bytes);
        records::Decimal number;
        return records::decode_field(data, number) &&
               records::compare(number, records::Decimal{}) == 0;
    }
    std::vector<std::uint8_t> blank(static_cast<std::size_t>(item.data.length));
    if (!is_binary) {
        const TextForm form = text_form(item, characters);
        fill_blank(blank.data(), blank.size(), blank_of(form, characters));
    }
    return std::equal(blank.begin(), blank.end(), bytes);
}

Problem counter_problem(const records::CounterProblem& counter, const RecordLayout& layout,
                        const RecordFields& fields) {
    Place place;
    place.field = counter.counter;
    place.in_record = static_cast<std::uint32_t>(counter.offset);
    for (const Field& field : layout.fields) {
        if (field.offset != counter.offset) continue;
        place.field = fields.name(field.item);
        place.path = fields.path(field.item);
    }
    return {Cause::record, std::move(place),
            "the counter is not a number from " + std::to_string(counter.minimum) + " to " +
                std::to_string(counter.maximum) + ", so that the table's length is not known",
            "the counter is to be the number of entries"};
}

Problem uncounted_problem(const Field& field, const RecordFields& fields) {
    Place place{.field = fields.name(field.item), .path = fields.path(field.item)};
    return {Cause::record, std::move(place),
            "there is data for an entry that the table's counter does not count",
            "the counter is to be the number of entries"};
}

}  // namespace conversion
