// A record as a readable table: the bytes, name, picture and value of each field.
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>

#include "conversion/fields/completed_record.h"
#include "conversion/fields/record_fields.h"
#include "conversion/fields/sliding_record.h"
#include "conversion/formats/record_format.h"
#include "conversion/texts/character_set.h"
#include "records/description.h"

namespace command {

// Shows the records of one description. Bytes that belong to no field have lines of their own.
class RecordTable {
  public:
    // Both must outlive this; the description's conditions are evaluated with it. Throws Failure.
    RecordTable(records::Description& description, const conversion::CharacterSet& characters);

    // In UTF-8, a line for each 16 bytes of a field, with headings.
    std::string of(const conversion::Record& record);

  private:
    const std::string& picture_of(const conversion::Field& field) const;
    std::string line(const std::string& offset, const std::string& bytes, const std::string& name,
                     const std::string& picture, const std::string& value) const;
    // `takes_all`: the fields of all conditions.
    std::string lines_of(const conversion::RecordLayout& layout, const conversion::Record& record,
                         bool takes_all) const;
    std::string unnamed_bytes(const conversion::Record& record, std::size_t from,
                              std::size_t to) const;
    std::string field_lines(const conversion::Record& record, const conversion::Field& field) const;
    std::string value_of_field(const conversion::Field& field,
                               std::span<const std::uint8_t> bytes) const;
    std::string byte_lines(std::span<const std::uint8_t> bytes, std::size_t offset,
                           const std::string& name, const std::string& picture,
                           const std::string& value) const;

    Xfd& xfd_;
    const conversion::CharacterSet& characters_;
    conversion::RecordFields fields_;
    std::optional<conversion::SlidingRecord> sliding_;
    conversion::CompletedRecord completed_;
    std::span<const std::uint8_t> whole_;  // the record being shown, its last field filled up
    std::map<std::string, std::string> pictures_;  // by element name
    std::size_t name_width_ = 10;
    std::size_t picture_width_ = 7;
};

}  // namespace command
