// EBCDIC records to records in ISO-8859-1.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "host/record_description.h"
#include "tools/sxml/character_set.h"
#include "tools/sxml/record_fields.h"

namespace command {

// Translates records field by field: characters through a table, DISPLAY numbers by value, so that
// overpunched signs come out right; packed, binary and floating-point data stay as they are.
class RecordTranslation {
  public:
    // `from` describes the records as they are, `to` what they become; both were compiled from the
    // same source, so that their items correspond. `fields` are the fields of `from`. All must
    // outlive this.
    RecordTranslation(const Xfd& from, const Xfd& to, const CharacterSet& characters,
                      const RecordFields& fields, std::int32_t record_length);

    // The record translated: the chosen fields that apply, with everything else copied. Valid until
    // the next call. Throws Failure when two fields that apply share bytes and need different
    // translations of them. Numbers that are none come out as decode_field() repairs them, and
    // count as data exceptions.
    const std::uint8_t* translate(const std::uint8_t* record, std::span<const Field> chosen,
                                  std::int32_t length);

  private:
    void translate_field(const std::uint8_t* record, const Field& field);
    void translate_number(const std::uint8_t* record, const Field& field);
    void store(const Field& field, const std::uint8_t* bytes);

    const Xfd& from_;
    const Xfd& to_;
    const CharacterSet& characters_;
    const RecordFields& fields_;
    std::vector<std::uint8_t> translated_;
    std::vector<std::uint8_t> stored_;   // 1 for each byte that a field has stored
    std::vector<std::uint8_t> scratch_;  // one field
};

}  // namespace command
