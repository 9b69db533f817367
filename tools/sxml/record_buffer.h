// The record that the module fills: what its fields hold before there is any data.
#pragma once

#include <cstdint>
#include <vector>

#include "host/record_description.h"

namespace command {

enum class BufferFill {
    by_type,  // characters spaces, numbers zero
    spaces,
    zeros,  // bytes of value 0
    keep    // what the record before held; the first one as by_type
};

// A record buffer. With by_type, the fields of a condition get their values when the condition
// turns out to hold. Of fields that have a byte in common, only the first one that applies gets its
// value.
class RecordBuffer {
  public:
    // `xfd` must outlive this; it tells fields, offsets and conditions.
    RecordBuffer(const Xfd& xfd, std::int32_t record_length, BufferFill fill);

    // Prepares the buffer for the next record.
    void begin_record();
    // Condition `number` holds in this record.
    void add_condition(int number);
    // True when fields without data keep what the record before held.
    bool keeps() const { return fill_ == BufferFill::keep; }
    std::uint8_t* data() { return bytes_.data(); }

  private:
    void initialise(const XfdItem& field);
    bool is_claimed(const XfdItem& field) const;

    BufferFill fill_;
    std::vector<std::uint8_t> bytes_;
    std::vector<std::uint8_t> start_;  // the record with the fields of every record at their values
    std::vector<std::uint8_t> claimed_;  // 1 for bytes of fields that apply
    std::vector<std::uint8_t> claimed_by_all_;
    std::vector<std::vector<const XfdItem*>> fields_;  // by condition
    bool first_ = true;
};

}  // namespace command
