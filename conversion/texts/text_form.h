// How the bytes of a character field make characters.
#pragma once

#include <cstdint>

#include "conversion/texts/character_set.h"
#include "host/record_description.h"

namespace conversion {

enum class TextForm : std::uint8_t {
    plain,        // as the records' character set has it
    double_byte,  // two bytes each, without shifts: PIC G
    utf16         // UTF-16, most significant byte first: PIC N on mainframes
};

// Of a field with text, in records of this set.
TextForm text_form(const XfdItem& item, const CharacterSet& characters);

// What fills up a field of this form: one byte, or two in turn.
struct TextBlank {
    std::uint8_t first;
    std::uint8_t second;
};
TextBlank blank_of(TextForm form, const CharacterSet& characters);
// Fills bytes of a field, from its start or an even offset.
void fill_blank(std::uint8_t* bytes, std::size_t size, TextBlank blank);

}  // namespace conversion
