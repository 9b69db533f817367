#include "records/layout/conditions/code_page.h"

#include <array>

#include "host/utf8.h"
#include "platform/character_sets.h"

namespace records {
namespace {

struct CodePage {
    std::array<std::uint8_t, 256> to_ebcdic{};
    std::array<std::uint8_t, 256> to_ascii{};
};

// The translation between ISO-8859-1 and EBCDIC code page 037.
CodePage make_code_page() {
    CodePage page;
    platform::CharacterTable characters;
    platform::find_in_tables("IBM037", characters);
    for (std::size_t byte = 0; byte < characters.size(); ++byte) {
        const auto code = static_cast<std::uint8_t>(characters[byte]);
        page.to_ascii[byte] = code;
        page.to_ebcdic[code] = static_cast<std::uint8_t>(byte);
    }
    return page;
}

const CodePage& code_page() {
    static const CodePage page = make_code_page();
    return page;
}

// Texts of a source in UTF-8 as ISO-8859-1, from which they are translated to the code page; a text
// that is not UTF-8 or has other characters is taken as ISO-8859-1 already.
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
