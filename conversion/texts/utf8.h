// Text in UTF-8: what a character is, and where one ends.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace conversion {

// Length of the valid character of several bytes at `text`, of which `available` bytes (one at
// least) may be looked at. 0 when there is none: for ASCII, for incomplete and overlong forms,
// surrogates, and U+FFFE and U+FFFF, which are no characters of XML.
std::size_t utf8_character_length(const std::uint8_t* text, std::size_t available);

struct Utf8Character {
    char32_t code;       // what a byte stands for in ISO-8859-1 when it begins no character
    std::size_t length;  // bytes, at least 1
};
// The character that a text (not empty) begins with.
Utf8Character first_character(std::string_view text);

// Appends a character's bytes.
void append_utf8(char32_t code, std::string& text);

// How many of a text's first `size` bytes are whole characters: `size`, or up to three fewer. All
// of a text that is no longer than that.
std::size_t whole_characters(std::string_view text, std::size_t size);

}  // namespace conversion
