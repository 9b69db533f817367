#include "conversion/texts/utf8.h"

#include <array>
#include <cstdio>

namespace conversion {

void append_utf8(char32_t code, std::string& text) {
    char bytes[4];
    text.append(bytes, utf8::put(code, bytes));
}

std::string character_name(char32_t character) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "U+%04X", static_cast<unsigned>(character));
    return text.data();
}

std::size_t whole_characters(std::string_view text, std::size_t size) {
    if (text.size() <= size) return text.size();
    constexpr std::size_t MOST_FOLLOWING = 3;
    std::size_t whole = size;
    while (whole > 0 && size - whole < MOST_FOLLOWING && utf8::continues(text[whole])) --whole;
    return utf8::continues(text[whole]) ? size : whole;
}

}  // namespace conversion
