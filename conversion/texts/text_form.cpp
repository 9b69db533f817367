#include "conversion/texts/text_form.h"

#include "records/field_types.h"

namespace conversion {

TextForm text_form(const XfdItem& item, const CharacterSet& characters) {
    if (!characters.is_ebcdic()) return TextForm::plain;
    if (item.data.type == records::NATIONAL) return TextForm::utf16;
    const std::uint8_t flags = records::field_extra(item.data).flags;
    const bool is_double = (flags & records::FIELD_DOUBLE_BYTE) != 0 && characters.has_pairs();
    return is_double ? TextForm::double_byte : TextForm::plain;
}

TextBlank blank_of(TextForm form, const CharacterSet& characters) {
    if (form == TextForm::utf16) return {0, ' '};
    return {characters.space(), characters.space()};
}

void fill_blank(std::uint8_t* bytes, std::size_t size, TextBlank blank) {
    for (std::size_t i = 0; i < size; ++i) bytes[i] = i % 2 == 0 ? blank.first : blank.second;
}

}  // namespace conversion
