// The texts in a file's records: what a document cannot hold, and what it does not keep.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "gnucobol/record_layouts.h"
#include "gnucobol/text_check.h"
#include "host/record_description.h"

namespace gnucobol {

class RecordText {
  public:
    // The description and its layouts outlive this. Texts are in `encoding` (empty for UTF-8).
    RecordText(Xfd& xfd, const std::vector<RecordLayout>& layouts, const std::string& encoding);

    // Why the document cannot hold a record; nothing when it can.
    std::optional<std::string> problem(const std::uint8_t* record, std::uint32_t length) const;

    // How long the record must be for the field that ends it to be written whole: the module leaves
    // a field out that reaches beyond the record.
    std::uint32_t length_of_whole_fields(const std::uint8_t* record, std::uint32_t length) const;

    // Puts the text of fields that are not aligned on the left where it belongs, and blanks what is
    // left of a character that did not fit. `held` are the conditions of the record, by number.
    void settle(std::uint8_t* record, const std::vector<bool>& held) const;

    // Whether a record is but one field of characters.
    bool is_one_text() const { return fields_.size() == 1 && texts_.size() == 1; }

  private:
    bool is_written(std::int32_t item, const std::uint8_t* record) const;

    Xfd& xfd_;
    const std::vector<RecordLayout>& layouts_;
    bool is_utf8_;
    TextCheck check_;
    std::vector<std::int32_t> fields_;   // items that are no groups
    std::vector<std::int32_t> texts_;    // those of characters
    std::vector<std::int32_t> aligned_;  // those of texts that are not simply aligned on the left
};

}  // namespace gnucobol
