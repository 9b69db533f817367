#include "records/layout/code_page.h"

#include <iconv.h>

#include <array>

#include "host/utf8.h"

namespace records {
namespace {

struct CodePage {
    std::array<std::uint8_t, 256> to_ebcdic{};
    std::array<std::uint8_t, 256> to_ascii{};
};

// The translation between ISO-8859-1 and EBCDIC code page 037.
CodePage make_code_page() {
    CodePage page;
    const iconv_t converter = iconv_open("IBM037", "ISO-8859-1");
    const bool is_open = reinterpret_cast<std::intptr_t>(converter) != -1;
    for (int i = 0; i < 256; ++i) {
        const auto code = static_cast<std::uint8_t>(i);
        char from = static_cast<char>(code);
        char to = from;
        char* in = &from;
        char* out = &to;
        std::size_t in_left = 1;
        std::size_t out_left = 1;
        if (is_open) {
            iconv(converter, &in, &in_left, &out, &out_left);
        }
        page.to_ebcdic[code] = static_cast<std::uint8_t>(to);
        page.to_ascii[static_cast<std::uint8_t>(to)] = code;
    }
    if (is_open) iconv_close(converter);
    return page;
}

const CodePage& code_page() {
    static const CodePage page = make_code_page();
    return page;
}

// Texts of a source in UTF-8 as ISO-8859-1, which the code page is told from; a text that is no
// UTF-8 or has other characters is taken as ISO-8859-1 already.
std::string latin_1(const std::string& text) {
    std::string latin;
    for (std::string_view rest = text; !rest.empty();) {
        const utf8::Character character = utf8::first_character(rest);
        const bool is_broken = character.length == 1 && character.code >= 0x80;
        if (is_broken || character.code > 0xFF) return text;
        latin += static_cast<char>(character.code);
        rest.remove_prefix(character.length);
    }
    return latin;
}

}  // namespace

std::string in_encoding(std::string text, bool ebcdic) {
    if (!ebcdic) return text;
    text = latin_1(text);
    for (char& c : text) {
        c = static_cast<char>(code_page().to_ebcdic[static_cast<std::uint8_t>(c)]);
    }
    return text;
}

std::uint8_t ascii_of(std::uint8_t byte, bool ebcdic) {
    return ebcdic ? code_page().to_ascii[byte] : byte;
}

}  // namespace records
