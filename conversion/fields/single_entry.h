// The table that ends a record, when its counter (OCCURS DEPENDING ON) says 1. The elements of a
// table's only entry carry no number for it: matched exactly, what is a table in that entry would
// be lost. Matched otherwise, entries that are not there would get data, too.
#pragma once

#include <cstdint>

#include "records/description.h"

namespace conversion {

class SingleEntry {
  public:
    // The description must outlive this object.
    explicit SingleEntry(const records::Description& description) : description_(&description) {}

    // A number has been stored at `place` in the record, which stands at `position` in its file.
    // True when it is that counter: the fields that follow are to be matched without the number of
    // the entry.
    bool is_counted_by(const std::uint8_t* record, const void* place,
                       records::RecordPosition position);
    // The next record is read.
    void begin_record() { end_ = 0; }
    // False for fields after the only entry.
    bool is_in_use(std::int32_t offset) const { return end_ == 0 || offset < end_; }

  private:
    const records::Description* description_;
    std::int32_t end_ = 0;  // where the only entry ends; 0 in other records
};

}  // namespace conversion
