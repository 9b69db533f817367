#include "conversion/texts/field_text.h"

#include "conversion/texts/utf8.h"
#include "host/utf8.h"

namespace conversion {

namespace {

bool is_same(DocumentText from, const CharacterSet& to) {
    return from == DocumentText::utf8 ? to.is_utf8()
                                      : to.declared_name() == "ISO-8859-1" && !to.is_ebcdic();
}

}  // namespace

FieldText::FieldText(DocumentText from, const CharacterSet& to)
    : from_(from), to_(to), converts_(!is_same(from, to)) {
    if (to.is_utf8()) return;
    for (std::size_t byte = 0; byte < to.characters().size(); ++byte) {
        const std::int32_t code = to.characters()[byte];
        if (code >= 0) bytes_.emplace(static_cast<char32_t>(code), static_cast<char>(byte));
    }
}

std::optional<char32_t> FieldText::convert(std::string_view text, std::string& converted) const {
    converted.clear();
    while (!text.empty()) {
        const utf8::Character character =
            from_ == DocumentText::utf8
                ? utf8::first_character(text)
                : utf8::Character{static_cast<std::uint8_t>(text.front()), 1};
        text.remove_prefix(character.length);
        if (to_.is_utf8()) {
            append_utf8(character.code, converted);
            continue;
        }
        const auto found = bytes_.find(character.code);
        if (found == bytes_.end()) return character.code;
        converted += found->second;
    }
    return std::nullopt;
}

std::size_t FieldText::fitting(std::string_view text, std::size_t size) const {
    if (text.size() <= size) return text.size();
    return to_.is_utf8() ? whole_characters(text, size) : size;
}

}  // namespace conversion
