// Characters and texts in UTF-8: appended, cut, named.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "host/utf8.h"

namespace conversion {

// Appends a character's bytes.
void append_utf8(char32_t code, std::string& text);

// "U+20AC"
std::string character_name(char32_t character);

// How many of a text's first `size` bytes are whole characters: `size`, or up to three fewer. All
// of a text that is no longer than that.
std::size_t whole_characters(std::string_view text, std::size_t size);

}  // namespace conversion
