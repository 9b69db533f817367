// A document whose records are to be read: where in it they are, and whether attributes count.
#pragma once

#include <optional>

#include "conversion/documents/document_source.h"
#include "conversion/session/input_document.h"
#include "records/description.h"
#include "tools/sxml/options/record_target.h"
#include "tools/sxml/reports/run_report.h"

namespace command {

class RecordDocument {
  public:
    // Takes the records at the path. Both must outlive this. Throws Failure.
    RecordDocument(const conversion::DocumentSource& given, const DocumentOptions& options);

    // For records of these layouts: their groups tell where attributes go. What is in no record is
    // counted in the report. To be called before input(). Throws Failure, also for what is left
    // out, when the report is strict.
    void prepare(const records::Description& description, RunReport& report);

    // The document as it can be parsed.
    const conversion::DocumentSource& source() const;
    conversion::InputDocument::Options input() const;

  private:
    const DocumentOptions& options_;
    const conversion::DocumentSource& given_;
    std::optional<conversion::DocumentSource> at_path_;
    std::optional<conversion::DocumentSource> with_attributes_;
};

// A warning about data of the document that is in no record; nothing when all data is.
std::optional<conversion::Problem> problem_of(const conversion::LeftOut& left_out);

}  // namespace command
