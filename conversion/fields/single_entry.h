// The table that ends a record, when its counter (OCCURS DEPENDING ON) says 1. The elements of a
// table's only entry carry no number for it: matched exactly, what is a table in that entry would
// be lost. Matched otherwise, entries that are not there would get data, too.
#pragma once

#include <cstdint>

#include "records/description.h"

namespace documents {

class SingleEntry {
  public:
    // Does nothing for a user who has chosen how tables are matched. The description must outlive
    // this object.
    explicit SingleEntry(const records::Description& description);
    SingleEntry(const SingleEntry&) = delete;
    SingleEntry& operator=(const SingleEntry&) = delete;

    // A number has been stored at `place` in the record: if it is that counter, the fields that
    // follow are matched without the number of the entry. Throws std::bad_alloc.
    void number_stored(const std::uint8_t* record, const void* place);
    // The record has been read.
    void end_record();
    // False for fields behind the only entry.
    bool is_in_use(std::int32_t offset) const { return end_ == 0 || offset < end_; }

  private:
    const records::Description& description_;
    bool is_chosen_;        // by the user
    std::int32_t end_ = 0;  // where the only entry ends; 0 in other records
};

}  // namespace documents
