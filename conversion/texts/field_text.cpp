#include "conversion/texts/field_text.h"

#include <algorithm>

#include "conversion/texts/utf8.h"
#include "host/utf8.h"

namespace conversion {

namespace {

constexpr char SHIFT_OUT = CharacterSet::SHIFT_OUT;
constexpr char SHIFT_IN = CharacterSet::SHIFT_IN;

bool is_same(DocumentText from, const CharacterSet& to) {
    return from == DocumentText::utf8 ? to.is_utf8() : to.is_latin1_document() && !to.converts();
}

void append_unit(std::uint32_t unit, std::string& converted) {
    converted += static_cast<char>(unit >> 8 & 0xFF);
    converted += static_cast<char>(unit & 0xFF);
}

void append_utf16(char32_t code, std::string& converted) {
    if (code < 0x10000) return append_unit(code, converted);
    append_unit(0xD800 + ((code - 0x10000) >> 10), converted);
    append_unit(0xDC00 + ((code - 0x10000) & 0x3FF), converted);
}

void cut_utf16(std::string& converted, std::size_t size) {
    size -= size % 2;
    const auto lead = [&] { return static_cast<unsigned char>(converted[size - 2]) & 0xFC; };
    if (size >= 2 && lead() == 0xD8) size -= 2;
    converted.resize(size);
}

}  // namespace

FieldText::FieldText(DocumentText from, const CharacterSet& to)
    : from_(from), to_(to), converts_(!is_same(from, to)) {
    if (to.is_utf8()) return;
    for (std::size_t byte = 0; byte < to.characters().size(); ++byte) {
        const std::int32_t code = to.characters()[byte];
        if (code >= 0) bytes_.emplace(static_cast<char32_t>(code), static_cast<char>(byte));
    }
    if (!to.has_pairs()) return;
    for (std::uint32_t pair = 0; pair < 0x10000; ++pair) {
        const auto first = static_cast<std::uint8_t>(pair >> 8);
        const auto second = static_cast<std::uint8_t>(pair & 0xFF);
        const std::int32_t code = to.pair(first, second);
        if (code < 0 || !to.writes(first, second)) continue;
        pairs_.emplace(static_cast<char32_t>(code), static_cast<std::uint16_t>(pair));
    }
}

std::optional<char32_t> FieldText::convert(std::string_view text, std::string& converted,
                                           TextForm form) const {
    converted.clear();
    bool is_shifted = false;
    while (!text.empty()) {
        const utf8::Character character =
            from_ == DocumentText::utf8
                ? utf8::first_character(text)
                : utf8::Character{static_cast<std::uint8_t>(text.front()), 1};
        text.remove_prefix(character.length);
        if (!append(character.code, converted, form, is_shifted)) return character.code;
    }
    if (is_shifted) converted += SHIFT_IN;
    return std::nullopt;
}

// False when the character is not in the set.
bool FieldText::append(char32_t code, std::string& converted, TextForm form,
                       bool& is_shifted) const {
    if (form == TextForm::utf16) {
        append_utf16(code, converted);
        return true;
    }
    if (form == TextForm::double_byte) return append_pair(code, converted);
    if (to_.is_utf8()) {
        append_utf8(code, converted);
        return true;
    }
    const auto found = bytes_.find(code);
    if (found != bytes_.end()) {
        if (is_shifted) converted += SHIFT_IN;
        is_shifted = false;
        converted += found->second;
        return true;
    }
    if (pairs_.count(code) == 0) return false;
    if (to_.has_shifts() && !is_shifted) converted += SHIFT_OUT;
    is_shifted = to_.has_shifts();
    return append_pair(code, converted);
}

bool FieldText::append_pair(char32_t code, std::string& converted) const {
    const auto found = pairs_.find(code);
    if (found == pairs_.end()) return false;
    append_unit(found->second, converted);
    return true;
}

std::size_t FieldText::fitting(std::string_view text, std::size_t size) const {
    if (text.size() <= size) return text.size();
    return to_.is_utf8() ? whole_characters(text, size) : size;
}

void FieldText::cut(std::string& converted, std::size_t size, TextForm form) const {
    if (converted.size() <= size) return;
    if (form == TextForm::utf16) return cut_utf16(converted, size);
    if (form == TextForm::double_byte) return converted.resize(size - size % 2);
    if (to_.has_pairs()) return cut_plain(converted, size);
    converted.resize(fitting(converted, size));
}

void FieldText::cut_plain(std::string& converted, std::size_t size) const {
    bool is_shifted = false;
    std::size_t end = 0;  // of the characters that fit
    bool ends_shifted = false;
    std::size_t at = 0;
    while (at < converted.size()) {
        const auto byte = static_cast<std::uint8_t>(converted[at]);
        if (to_.has_shifts() && (converted[at] == SHIFT_OUT || converted[at] == SHIFT_IN)) {
            is_shifted = converted[at] == SHIFT_OUT;
            ++at;
            continue;
        }
        at += is_shifted || to_.is_lead(byte) ? 2 : 1;
        if (at + (is_shifted ? 1 : 0) > size) break;
        end = at;
        ends_shifted = is_shifted;
    }
    converted.resize(end);
    if (ends_shifted) converted += SHIFT_IN;
}

}  // namespace conversion
