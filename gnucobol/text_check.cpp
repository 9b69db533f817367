#include "gnucobol/text_check.h"

#include <algorithm>
#include <string_view>

#include "conversion/texts/utf8.h"
#include "gnucobol/document_encoding.h"

namespace gnucobol {

namespace {

std::string named(std::uint8_t byte) {
    constexpr std::string_view DIGITS = "0123456789ABCDEF";
    return std::string("the byte 0x") + DIGITS[byte >> 4] + DIGITS[byte & 0xF];
}

bool is_control(std::uint8_t byte) {
    return byte < 0x20 && byte != '\t' && byte != '\n' && byte != '\r';
}

}  // namespace

TextCheck::TextCheck(const std::string& encoding) : encoding_(encoding) {
    const bool is_in_utf8 = is_utf8(encoding);
    const ByteSet without_meaning = bytes_without_meaning(encoding);
    for (std::size_t byte = 0; byte < special_.size(); ++byte) {
        const bool is_special = is_control(static_cast<std::uint8_t>(byte)) ||
                                without_meaning[byte] || (is_in_utf8 && byte >= 0x80);
        special_[byte] = is_special ? 1 : 0;
    }
}

std::optional<std::string> TextCheck::closer_look(const std::uint8_t* text,
                                                  std::size_t length) const {
    for (std::size_t i = 0; i < length; ++i) {
        if (special_[text[i]] == 0) continue;
        if (text[i] == 0) {
            if (std::all_of(text + i, text + length, [](auto byte) { return byte == 0; })) break;
            return "a NUL byte has text behind it, which would be lost";
        }
        if (is_control(text[i])) {
            return named(text[i]) +
                   " is a control character that XML does not allow; binary data needs the "
                   "directive `hex` in the copybook";
        }
        if (!is_utf8(encoding_)) return named(text[i]) + " is no character of " + encoding_;
        const std::size_t width = documents::utf8_character_length(text + i, length - i);
        if (width == 0) {
            return named(text[i]) +
                   " is not valid UTF-8; if the program's text is in another character set, name "
                   "it: SXML_ENCODING=ISO-8859-1";
        }
        i += width - 1;
    }
    return std::nullopt;
}

void blank_cut_character(std::uint8_t* text, std::size_t length) {
    for (std::size_t behind = 1; behind <= std::min<std::size_t>(length, 3); ++behind) {
        const std::uint8_t byte = text[length - behind];
        if ((byte & 0xC0) == 0x80) continue;
        if (documents::utf8_length_from(byte) > behind)
            std::fill(text + length - behind, text + length, ' ');
        return;
    }
}

}  // namespace gnucobol
