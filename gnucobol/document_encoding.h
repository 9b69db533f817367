// The encoding of documents that are written: what SXML_ENCODING says.
#pragma once

#include <array>
#include <string>

namespace gnucobol {

// Empty when not set; documents are in UTF-8 then.
std::string encoding_to_write();

bool is_utf8(const std::string& encoding);

// Whether its characters up to 0x7E are those of ASCII. Markup goes out in ASCII and text as the
// program holds it, so that a document in another encoding could not be read.
bool extends_ascii(const std::string& encoding);

// Whether a byte is certainly no part of a character.
using ByteSet = std::array<bool, 256>;
ByteSet bytes_without_meaning(const std::string& encoding);

}  // namespace gnucobol
