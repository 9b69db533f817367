// Settings whose texts go into a document that is written.
#pragma once

#include "conversion/problem.h"
#include "conversion/texts/character_set.h"

namespace conversion {

// A problem that names the setting when one that counts would make a document of records in this
// character set, or its schema, not well-formed.
Done check_document_settings(const CharacterSet& characters);

}  // namespace conversion
