// Counts and extremes of the fields of a file's records, for `sxml check`.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "conversion/fields/completed_record.h"
#include "conversion/fields/record_fields.h"
#include "conversion/fields/sliding_record.h"
#include "conversion/formats/record_format.h"
#include "conversion/session/input_document.h"
#include "conversion/texts/character_set.h"
#include "conversion/texts/text_check.h"
#include "records/description.h"
#include "records/numbers.h"

namespace command {

// Of a field in all records, all its occurrences in a table together.
struct FieldCounts {
    std::string layout;
    std::string path;  // from below the record, without subscripts
    bool is_number = false;
    std::uint64_t count = 0;    // how often records had it
    std::uint64_t blank = 0;    // spaces, bytes of value 0, or no element in the document
    std::uint64_t zero = 0;     // numbers
    std::uint64_t invalid = 0;  // not a number, or a text that the other side cannot hold
    std::uint64_t cut = 0;      // texts of a document that were too long, or had too many digits
    std::string smallest;       // of the numbers by value, of the texts by their bytes, in UTF-8
    std::string largest;
    std::size_t longest = 0;  // text: bytes without the blanks at its end
};

// Bytes of records that belong to no field and are not blank: no document has them.
struct UnnamedBytes {
    std::uint64_t bytes = 0;
    std::uint64_t records = 0;
    std::uint64_t first_record = 0;  // from 1
    std::uint64_t first_offset = 0;  // in the file
};

// Texts of records with leading white space, or trailing white space other than spaces, which a
// document does not keep. Right-justified and edited texts are restored.
struct ShiftedTexts {
    std::uint64_t count = 0;
    std::uint64_t first_record = 0;  // from 1
    std::uint64_t first_offset = 0;  // of the field, in the file
    std::string first_field;
};

class FieldStatistics {
  public:
    // Both must outlive this; the description's conditions are evaluated with it. Throws Failure.
    FieldStatistics(records::Description& description, const conversion::CharacterSet& characters);

    // Counts a record of a record file.
    void add(const conversion::Record& record);
    // Counts the record of a document that was read last.
    void add(const conversion::InputDocument& document);

    // In the description's order.
    std::vector<FieldCounts> fields() const;
    // Names of layouts with their records, in the description's order.
    std::vector<std::pair<std::string, std::uint64_t>> layouts() const;
    std::uint64_t of_no_layout() const { return of_no_layout_; }
    const UnnamedBytes& unnamed_bytes() const { return unnamed_; }
    const ShiftedTexts& shifted_texts() const { return shifted_; }

  private:
    struct Row {
        FieldCounts counts;
        std::optional<records::Decimal> smallest, largest;  // numbers
        conversion::TextForm form = conversion::TextForm::plain;
        std::optional<std::string> first, last;  // texts: bytes, blanks at the end cut
    };

    const std::uint8_t* spread(std::span<const std::uint8_t> record);
    bool holds_data(const conversion::Field& field, std::int32_t length) const;
    std::int32_t used_length(std::span<const std::uint8_t> record) const;
    // The layout that the record is counted with.
    std::size_t choose(const std::uint8_t* record);
    Row& row_of(const conversion::Field& field) { return rows_[row_of_item_.at(field.item)]; }
    bool has_problem(const conversion::Field& field, const std::uint8_t* bytes) const;
    void add_value(Row& row, const conversion::Field& field, const std::uint8_t* bytes);
    void add_number(Row& row, const conversion::Field& field, const std::uint8_t* bytes);
    void add_text(Row& row, const conversion::Field& field, const std::uint8_t* bytes);
    void add_unnamed(const conversion::Record& record, const conversion::RecordLayout& layout,
                     std::int32_t length);
    void note_shifted(const conversion::Record& record, const conversion::Field& field,
                      const std::uint8_t* bytes);
    // Whether a document keeps the white space at both ends.
    bool keeps_edges(std::span<const std::uint8_t> text) const;
    bool is_white(std::uint8_t byte) const;
    bool is_blank(std::uint8_t byte) const { return byte == characters_.space() || byte == 0; }

    records::Description& description_;
    const conversion::CharacterSet& characters_;
    conversion::RecordFields fields_;
    std::optional<conversion::SlidingRecord> sliding_;
    conversion::CompletedRecord completed_;
    conversion::TextCheck texts_;
    std::vector<Row> rows_;
    std::map<std::int32_t, std::size_t> row_of_item_;
    std::vector<std::uint64_t> records_;  // by layout
    std::uint64_t of_no_layout_ = 0;
    records::RecordPosition position_;  // of the record counted last
    bool is_of_a_layout_ = false;       // the record counted last
    UnnamedBytes unnamed_;
    ShiftedTexts shifted_;
    std::vector<std::uint8_t> named_;  // 1 for the bytes of a record that belong to fields
};

}  // namespace command
