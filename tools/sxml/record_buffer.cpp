#include "tools/sxml/record_buffer.h"

#include <algorithm>

#include "records/numbers.h"

namespace command {

RecordBuffer::RecordBuffer(const Xfd& xfd, std::int32_t record_length, BufferFill fill)
    : fill_(fill),
      bytes_(static_cast<std::size_t>(record_length),
             fill == BufferFill::zeros ? std::uint8_t{0} : std::uint8_t{' '}),
      claimed_(bytes_.size()),
      fields_(static_cast<std::size_t>(std::max<int>(xfd.condition_count, 0)) + 1) {
    for (std::int32_t i = 0; i < xfd.item_count; ++i) {
        const XfdItem& item = xfd.items[i];
        if (item.condition >= 0 && item.condition <= xfd.condition_count &&
            item.condition != XFD_GROUP && item.data.length > 0) {
            fields_[static_cast<std::size_t>(item.condition)].push_back(&item);
        }
    }
    const bool by_type = fill == BufferFill::by_type || fill == BufferFill::keep;
    if (by_type) add_condition(0);
    start_ = bytes_;
    claimed_by_all_ = claimed_;
}

void RecordBuffer::begin_record() {
    if (fill_ == BufferFill::keep && !first_) return;
    first_ = false;
    bytes_ = start_;
    claimed_ = claimed_by_all_;
}

void RecordBuffer::add_condition(int number) {
    if (fill_ == BufferFill::spaces || fill_ == BufferFill::zeros) return;
    if (fill_ == BufferFill::keep && !start_.empty()) return;
    for (const XfdItem* field : fields_[static_cast<std::size_t>(number)]) {
        if (!is_claimed(*field)) initialise(*field);
        std::fill_n(claimed_.begin() + field->offset, field->data.length, std::uint8_t{1});
    }
}

bool RecordBuffer::is_claimed(const XfdItem& field) const {
    const auto begin = claimed_.begin() + field.offset;
    return std::find(begin, begin + field.data.length, std::uint8_t{1}) !=
           begin + field.data.length;
}

void RecordBuffer::initialise(const XfdItem& field) {
    XfdDataDesc target = field.data;
    target.address = bytes_.data() + field.offset;
    if (is_numeric_type(target.type)) {
        records::Decimal zero;
        records::encode_field(zero, target);
    } else {
        std::fill_n(bytes_.begin() + field.offset, target.length, std::uint8_t{' '});
    }
}

}  // namespace command
