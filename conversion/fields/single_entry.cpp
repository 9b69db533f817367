#include "conversion/fields/single_entry.h"

#include <optional>

#include "host/config.h"
#include "host/runtime/settings.h"

namespace documents {

namespace {

constexpr const char* EXACT_TABLE_MATCH = "SXML_EXACT_TABLE_MATCH";

}  // namespace

SingleEntry::SingleEntry(const records::Description& description)
    : description_(description),
      is_chosen_(host_config_string(EXACT_TABLE_MATCH, nullptr) != nullptr) {}

void SingleEntry::end_record() {
    if (end_ == 0) return;
    end_ = 0;
    host::set_config(EXACT_TABLE_MATCH, std::nullopt);
}

void SingleEntry::number_stored(const std::uint8_t* record, const void* place) {
    if (is_chosen_ || !description_.is_counter_of_one(record, place)) return;
    end_ = description_.used_length(record, description_.record_length());
    host::set_config(EXACT_TABLE_MATCH, "no");
}

}  // namespace documents
