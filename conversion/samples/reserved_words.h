// Words that cannot be names in COBOL.
#pragma once

#include <string_view>

namespace conversion {

// Whether a word in upper case is reserved in COBOL's standards or in GnuCOBOL.
bool is_reserved_word(std::string_view word);

}  // namespace conversion
