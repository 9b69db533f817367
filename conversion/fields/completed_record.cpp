#include "conversion/fields/completed_record.h"

#include <algorithm>

#include "conversion/texts/text_form.h"

namespace conversion {

std::optional<Field> CompletedRecord::complete(std::span<const std::uint8_t> record,
                                               const RecordLayout& layout, const Xfd& judged) {
    const auto cut = static_cast<std::int32_t>(record.size());
    std::optional<Field> halved;
    data_ = record.data();
    length_ = cut;
    for (const Field& field : layout.fields) {
        const std::int32_t end = field.offset + field.length;
        const bool is_cut = field.offset < cut && end > cut;
        if (!is_cut || !condition_holds(judged, field.condition)) continue;
        if (length_ == cut) bytes_.assign(record.begin(), record.end());
        length_ = std::max(length_, end);
        bytes_.resize(static_cast<std::size_t>(length_), characters_.space());
        data_ = bytes_.data();
        const TextForm form = text_form(judged.items[field.item], characters_);
        if (form == TextForm::plain) continue;
        if ((cut - field.offset) % 2 != 0 && !halved) halved = field;
        fill_blank(bytes_.data() + cut, static_cast<std::size_t>(end - cut),
                   blank_of(form, characters_));
    }
    return halved;
}

}  // namespace conversion
