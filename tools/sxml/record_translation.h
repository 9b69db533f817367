// Records in one character set to records in another.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "host/record_description.h"
#include "tools/sxml/record_fields.h"

namespace command {

// How characters are translated.
struct TextTranslation {
    // The bytes of a character field; the result has their length and is valid until the next call.
    // May throw Failure.
    std::function<std::span<const std::uint8_t>(const Field&, std::span<const std::uint8_t>)> field;
    // A byte between the fields.
    std::array<std::uint8_t, 256> filler;
};

// Translates records field by field: characters as given, DISPLAY numbers by value, so that
// overpunched signs come out right; packed, binary and floating-point data stay as they are.
class RecordTranslation {
  public:
    // `from` describes the records as they are, `to` what they become; both were compiled from the
    // same source, so that their items correspond. `fields` are the fields of `from`. All must
    // outlive this.
    RecordTranslation(const Xfd& from, const Xfd& to, TextTranslation text,
                      const RecordFields& fields, std::int32_t record_length);

    // The record translated: the chosen fields that apply, and all else as filler. Valid until
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
    TextTranslation text_;
    const RecordFields& fields_;
    std::vector<std::uint8_t> translated_;
    std::vector<std::uint8_t> stored_;   // 1 for each byte that a field has stored
    std::vector<std::uint8_t> scratch_;  // one field
};

}  // namespace command
