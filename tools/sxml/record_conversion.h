// The loop from records to a document.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "conversion/formats/record_format.h"
#include "records/description.h"
#include "tools/sxml/atomic_output.h"
#include "tools/sxml/character_set.h"
#include "tools/sxml/document.h"
#include "tools/sxml/number_report.h"
#include "tools/sxml/record_check.h"
#include "tools/sxml/record_fields.h"
#include "tools/sxml/record_translation.h"

namespace command {

// Checks the records of a file one by one and has the module write them. Everything given must
// outlive this.
class RecordConversion {
  public:
    // `translated`: describes the records as the module gets them, when they are translated on the
    // way; else null.
    RecordConversion(conversion::ByteSource& source, records::Description& description,
                     const Xfd* translated, const CharacterSet& characters, RecordFields& fields);

    // Converts all records and closes the document. Throws Failure for a record that cannot become
    // part of a well-formed document, and when something could not be stored.
    void run(conversion::RecordFormat format, Document& document, const AtomicOutput& output);

  private:
    // "FILE: record N, ", for messages.
    std::string place(const conversion::Record& record) const;
    void convert(const conversion::Record& record, Document& document);
    const std::uint8_t* translate(const conversion::Record& record, std::span<const Field> chosen,
                                  std::int32_t length);
    void check_texts(const conversion::Record& record, std::span<const Field> chosen,
                     std::int32_t length) const;

    conversion::ByteSource& source_;
    records::Description& description_;
    RecordFields& fields_;
    TextCheck text_check_;
    std::vector<std::uint8_t> translated_text_;
    std::unique_ptr<RecordTranslation> translation_;
    NumberReport numbers_;
};

}  // namespace command
