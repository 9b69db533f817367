// The records that a document is to become, as the command line says.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "conversion/fields/blank_record.h"
#include "conversion/formats/record_format.h"
#include "conversion/texts/character_set.h"
#include "records/description.h"
#include "tools/sxml/options/record_input.h"

namespace command {

class Command;

struct DocumentOptions {
    std::string path;  // of the elements that are the records; empty: those in the document element
    bool takes_attributes = false;  // as elements
    std::uint32_t min_record_length = 0;
    conversion::BlankFill fill = conversion::BlankFill::by_type;

    bool are_given() const {
        return !path.empty() || takes_attributes || min_record_length != 0 ||
               fill != conversion::BlankFill::by_type;
    }
};

// Adds --record, --attributes, --min-record-length and --buffer. `options` must live until the
// command line has been parsed.
void add_document_options(Command command, DocumentOptions& options);

struct RecordTarget {
    conversion::RecordFormat format;
    std::optional<conversion::CharacterSet> characters;  // nothing: the document's

    records::RecordEncoding encoding() const;
    // Null: the document's.
    const conversion::CharacterSet* set() const { return characters ? &*characters : nullptr; }
};

// Throws Failure (wrong usage) for what records cannot be written as.
RecordTarget record_target(const RecordFileOptions& options);
// Throws Failure (wrong usage) for a least length of records that have none.
void check_lengths(const RecordTarget& target, const DocumentOptions& options);

}  // namespace command
