// The texts of a document's character fields on their way into the records.
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>

#include "host/record_description.h"
#include "tools/sxml/field_text.h"
#include "tools/sxml/field_warnings.h"
#include "tools/sxml/record_fields.h"

namespace command {

// The module would cut a text that is longer than its field at a byte and say nothing. So its
// descriptions are changed: character fields have a type that it converts, and the conversion
// function moves the text.
constexpr std::int16_t TEXT_TO_MOVE = 39;
static_assert(is_numeric_type(TEXT_TO_MOVE));

// Gives the character fields of a description that the module reads with that type.
void divert_texts(Xfd& xfd);

// Moves texts into records: whole characters, at the right end of right-justified fields. Warnings
// name the first texts that are longer than their fields.
class InputTexts {
  public:
    // `xfd` is the description as it was, `fields` its fields, `shown_name` the document's name in
    // messages. All given must outlive this.
    InputTexts(const Xfd& xfd, const RecordFields& fields, FieldText& conversion,
               std::string shown_name);

    // Whether fields without data keep their text from record to record.
    void begin_record(std::uint64_t number, bool keeps);
    // Moves a text into the field of item `index`, in the document's encoding.
    void move(std::int32_t index, std::string_view text, std::uint8_t* target);
    // A field that text was moved into, in the encoding of the records. Throws Failure.
    std::span<const std::uint8_t> convert(const Field& field, std::span<const std::uint8_t> bytes);
    // Says how many texts were cut.
    void finish() const;

  private:
    void report(std::int32_t index, std::string_view text, std::size_t whole);

    const Xfd& xfd_;
    const RecordFields& fields_;
    FieldText& conversion_;
    std::string shown_name_;
    std::uint64_t record_ = 0;
    // Texts by item that were longer than their fields and have to be converted yet: in the
    // records' encoding they may fit, or less of them.
    std::map<std::int32_t, std::string> long_texts_;
    FieldWarnings cut_;
};

// A text for a message: in quotation marks, cut when it is long.
std::string quoted(std::string_view text);

}  // namespace command
