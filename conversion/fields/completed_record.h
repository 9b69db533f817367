// Records that end within a field: what is left of the field is filled up with blanks.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "conversion/fields/record_fields.h"
#include "conversion/texts/character_set.h"

namespace conversion {

class CompletedRecord {
  public:
    // The character set must outlive this.
    explicit CompletedRecord(const CharacterSet& characters) : characters_(characters) {}

    // Fills up the fields of a layout that the record's end cuts; `judged` has the conditions of
    // the record. Result: the first field of which half a character of two bytes is left.
    std::optional<Field> complete(std::span<const std::uint8_t> record, const RecordLayout& layout,
                                  const Xfd& judged);

    // Of the record completed last, which must still be there:
    const std::uint8_t* data() const { return data_; }
    std::int32_t length() const { return length_; }

  private:
    const CharacterSet& characters_;
    std::vector<std::uint8_t> bytes_;  // of a record that had a field cut
    const std::uint8_t* data_ = nullptr;
    std::int32_t length_ = 0;
};

}  // namespace conversion
