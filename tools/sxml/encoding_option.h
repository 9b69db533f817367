// The character set of the records, as the command line names it.
#pragma once

#include <string>

#include "conversion/texts/character_set.h"
#include "records/description.h"

namespace command {

// The set called `name`, which `option` gave ("--encoding", "SXML_ENCODING"). Throws Failure (wrong
// usage) when it cannot be the records' set.
conversion::CharacterSet find_character_set(const std::string& name, const std::string& option);

// What DISPLAY numbers look like in records of this character set.
records::RecordEncoding record_encoding(const conversion::CharacterSet& characters);

}  // namespace command
