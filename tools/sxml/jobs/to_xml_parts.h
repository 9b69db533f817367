// Conversion of a record file to a document by several processes.
#pragma once

#include <optional>
#include <string>

#include "conversion/texts/character_set.h"
#include "records/description.h"
#include "tools/sxml/options/record_input.h"
#include "tools/sxml/output/atomic_output.h"
#include "tools/sxml/reports/reject_file.h"
#include "tools/sxml/reports/run_report.h"

namespace command {

// Everything that a conversion needs. What is referred to must outlive its use.
struct RecordsRun {
    const std::string& file;  // with the records
    const RecordFileOptions& options;
    RecordInput& input;  // the same, nothing read yet
    const records::Description& description;
    const conversion::CharacterSet& characters;
    const AtomicOutput& output;
    const ReportOptions& report_options;
    RunReport& report;
    RejectFile& rejects;
    std::optional<unsigned> jobs;  // asked for
};

// Converts the records, with as many processes as are asked for where the file can be read by
// several, and with one otherwise: same document, messages and rejects. Does not commit the output.
// Throws Failure.
void convert_records(const RecordsRun& run);

}  // namespace command
