// Conversion of a document to a record file by several processes.
#pragma once

#include <optional>

#include "conversion/formats/record_format.h"
#include "conversion/session/input_document.h"
#include "tools/sxml/convert/document_conversion.h"
#include "tools/sxml/output/atomic_output.h"
#include "tools/sxml/reports/reject_file.h"
#include "tools/sxml/reports/run_report.h"

namespace command {

// Everything that a conversion needs. What is referred to must outlive its use.
struct DocumentRun {
    const records::Description& description;
    const conversion::CharacterSet* characters;  // of the records; null: the document's
    conversion::InputDocument::Options document;
    conversion::RecordFormat format;
    RecordsWanted wanted;
    const AtomicOutput& output;
    const ReportOptions& report_options;
    RunReport& report;
    RejectFile& rejects;
    std::optional<unsigned> jobs;  // asked for
};

// Converts the document, with as many processes as are asked for where it can be divided, and with
// one otherwise: same records, messages and rejects. Does not commit the output. Throws Failure.
void convert_document(const DocumentRun& run);

}  // namespace command
