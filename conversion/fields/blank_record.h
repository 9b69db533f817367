// What the fields of a record hold that a document has no data for.
#pragma once

#include <cstdint>
#include <vector>

#include "conversion/texts/character_set.h"
#include "host/record_description.h"

namespace conversion {

enum class BlankFill : std::uint8_t {
    by_type,  // characters spaces, numbers zero, binary data (hexadecimal in documents) bytes of 0
    spaces,   // the whole record
    zeros,    // the whole record: bytes of value 0
    keep      // what the record before held; the first one as by_type
};

// The module leaves a field unchanged when the document has no data for it. So a record is blanked
// before data is stored in it: the fields of every record first, those of a condition when the
// condition turns out to hold. Of fields that have a byte in common, only the first one that
// applies gets its value. What belongs to no field is spaces.
class BlankRecord {
  public:
    // `xfd` must outlive this; it tells fields, offsets and conditions. `characters` are the
    // records', and must outlive this; null: an extension of ASCII.
    BlankRecord(const Xfd& xfd, std::int32_t record_length, BlankFill fill,
                const CharacterSet* characters);

    // Blanks a record with the fields that every record has. With BlankFill::keep, all but the
    // first record stay as they are.
    void begin(std::uint8_t* record);
    // Blanks the fields of condition `number`, which holds in this record.
    void add_condition(int number, std::uint8_t* record);

  private:
    void initialise(const XfdItem& field, std::uint8_t* record) const;
    bool is_claimed(const XfdItem& field) const;
    void claim_fields(int number, std::uint8_t* record);

    BlankFill fill_;
    const CharacterSet* characters_;
    std::uint8_t space_;
    std::vector<std::uint8_t> start_;    // the record with the fields of every record blanked
    std::vector<std::uint8_t> claimed_;  // 1 for bytes of fields that apply
    std::vector<std::uint8_t> claimed_by_all_;
    std::vector<std::vector<const XfdItem*>> fields_;  // by condition
    bool is_first_ = true;
};

}  // namespace conversion
