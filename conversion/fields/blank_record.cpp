#include "conversion/fields/blank_record.h"

#include <algorithm>

#include "conversion/texts/text_form.h"
#include "records/numbers.h"

namespace conversion {

BlankRecord::BlankRecord(const Xfd& xfd, std::int32_t record_length, BlankFill fill,
                         const CharacterSet* characters)
    : fill_(fill),
      characters_(characters),
      space_(characters != nullptr ? characters->space() : std::uint8_t{' '}),
      start_(static_cast<std::size_t>(record_length),
             fill == BlankFill::zeros ? std::uint8_t{0} : space_),
      claimed_(start_.size()),
      fields_(static_cast<std::size_t>(std::max<int>(xfd.condition_count, 0)) + 1) {
    for (std::int32_t i = 0; i < xfd.item_count; ++i) {
        const XfdItem& item = xfd.items[i];
        if (item.condition >= 0 && item.condition <= xfd.condition_count &&
            item.condition != XFD_GROUP && item.data.length > 0) {
            fields_[static_cast<std::size_t>(item.condition)].push_back(&item);
        }
    }
    if (fill == BlankFill::by_type || fill == BlankFill::keep) claim_fields(0, start_.data());
    claimed_by_all_ = claimed_;
}

void BlankRecord::begin(std::uint8_t* record) {
    if (fill_ == BlankFill::keep && !is_first_) return;
    is_first_ = false;
    std::copy(start_.begin(), start_.end(), record);
    if (fields_.size() > 1) claimed_ = claimed_by_all_;
}

void BlankRecord::add_condition(int number, std::uint8_t* record) {
    if (fill_ == BlankFill::by_type) claim_fields(number, record);
}

void BlankRecord::claim_fields(int number, std::uint8_t* record) {
    for (const XfdItem* field : fields_[static_cast<std::size_t>(number)]) {
        if (!is_claimed(*field)) initialise(*field, record);
        std::fill_n(claimed_.begin() + field->offset, field->data.length, std::uint8_t{1});
    }
}

bool BlankRecord::is_claimed(const XfdItem& field) const {
    const auto begin = claimed_.begin() + field.offset;
    return std::find(begin, begin + field.data.length, std::uint8_t{1}) !=
           begin + field.data.length;
}

void BlankRecord::initialise(const XfdItem& field, std::uint8_t* record) const {
    const bool is_binary = field.format == XFD_FORMAT_BINARY;
    std::uint8_t* const bytes = record + field.offset;
    const auto size = static_cast<std::size_t>(field.data.length);
    if (is_binary) return void(std::fill_n(bytes, size, std::uint8_t{0}));
    if (!is_numeric_type(field.data.type)) {
        const TextBlank blank = characters_ != nullptr
                                    ? blank_of(text_form(field, *characters_), *characters_)
                                    : TextBlank{space_, space_};
        return fill_blank(bytes, size, blank);
    }
    XfdDataDesc target = field.data;
    target.address = bytes;
    records::encode_field(records::Decimal{}, target);
}

}  // namespace conversion
