// What `sxml check` prints.
#pragma once

#include <string>

#include "conversion/texts/character_set.h"
#include "tools/sxml/check/field_statistics.h"
#include "tools/sxml/reports/run_report.h"

namespace command {

struct CheckOutcome {
    std::string name;  // of the file
    bool is_document;
    const RunReport& findings;
    const FieldStatistics& statistics;
    const conversion::CharacterSet& characters;  // of the bytes at fault
    std::string failure;                         // why the run ended; empty: it did not
    std::string reason;                          // why records do not fit; may be empty

    // Whether a conversion would not take over everything.
    bool loses() const;
};

// For people: lines of text in UTF-8.
std::string check_text(const CheckOutcome& outcome);
// For programs.
std::string check_json(const CheckOutcome& outcome);

}  // namespace command
