#include "conversion/fields/single_entry.h"

namespace conversion {

bool SingleEntry::is_counted_by(const std::uint8_t* record, const void* place,
                                records::RecordPosition position) {
    if (!description_->is_counter_of_one(record, place, position)) return false;
    if (description_->slides()) return true;
    end_ = description_->used_length(record, description_->record_length(), position);
    return true;
}

}  // namespace conversion
