// The character set of the records of a file, as the command line says.
#pragma once

#include <string>

#include "conversion/fields/record_fields.h"
#include "conversion/formats/record_format.h"
#include "conversion/session/output_document.h"
#include "conversion/texts/character_set.h"
#include "records/description.h"
#include "tools/sxml/reports/run_report.h"

namespace command {

class Command;

// The set called `name`, which `option` gave ("--encoding", "SXML_ENCODING"). Throws Failure (wrong
// usage) when it cannot be the records' set.
conversion::CharacterSet find_character_set(
    const std::string& name, const std::string& option,
    conversion::DocumentEncoding encoding = conversion::DocumentEncoding::utf8);

// The set of the records of a record file: `encoding`, or else what SXML_ENCODING says, or UTF-8.
// Where texts are converted, the document is in ISO-8859-1 if SXML_ENCODING says so, or else in
// UTF-8. Throws Failure (wrong usage). The settings must have been applied.
conversion::CharacterSet records_character_set(const std::string& encoding);

// Adds --controls. `use` says what it is for.
void add_controls_option(Command command, conversion::Controls& controls, const std::string& use);

// Throws Failure (wrong usage) for lines in an EBCDIC set.
void check_lines(const conversion::RecordFormat& format,
                 const conversion::CharacterSet& characters);

// The same, and for records that are lines warns of the first binary field.
void check_lines(const conversion::RecordFormat& format, const conversion::CharacterSet& characters,
                 const conversion::RecordFields& fields, RunReport& report);

// What DISPLAY numbers look like in records of this character set.
records::RecordEncoding record_encoding(const conversion::CharacterSet& characters);

}  // namespace command
