// Which bytes are a character of a document in UTF-8.
#pragma once

#include <cstddef>
#include <cstdint>

namespace documents {

// Length in bytes of the character that a byte begins; 0 when it begins none.
std::size_t utf8_length_from(std::uint8_t lead);

// Length of the valid character of several bytes at `text`, of which `available` bytes (one at
// least) may be looked at. 0 when there is none: for ASCII, for incomplete and overlong forms,
// surrogates, and U+FFFE and U+FFFF, which are no characters of XML.
std::size_t utf8_character_length(const std::uint8_t* text, std::size_t available);

}  // namespace documents
