// Texts of records in EBCDIC, as far as conditions look at them.
#pragma once

#include <cstdint>
#include <string>

namespace records {

// A literal's text as records hold it: as it stands, or, for EBCDIC, in code page 037. Texts in
// UTF-8 that the code page has no characters for are translated byte by byte.
std::string in_encoding(std::string text, bool ebcdic);

// The character of a record's byte in ISO-8859-1.
std::uint8_t ascii_of(std::uint8_t byte, bool ebcdic);

}  // namespace records
