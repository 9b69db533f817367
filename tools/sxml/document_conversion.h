// The loop from the records of a document to a record file.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "conversion/formats/record_format.h"
#include "conversion/session/input_document.h"
#include "tools/sxml/field_warnings.h"

namespace command {

// Reads the records of a document one by one, stores them, and names what is not as the document
// says. Everything given must outlive this.
class DocumentConversion {
  public:
    // `name`: of the document, in messages.
    DocumentConversion(conversion::InputDocument& document, std::string name,
                       conversion::RecordWriter& store);

    // Converts all records and closes the store. Throws Failure where the document ends too early
    // or is not well-formed, for a record that cannot be stored, and when there is no room.
    void run();

  private:
    void convert();
    void report(const conversion::FieldTrouble& trouble);
    void report_layout();
    void finish() const;
    std::string place() const;
    std::string place(std::int32_t item) const;

    conversion::InputDocument& document_;
    std::string name_;
    conversion::RecordWriter& store_;
    FieldWarnings lost_numbers_;
    FieldWarnings cut_;
    FieldWarnings strangers_;  // records of no layout
};

}  // namespace command
