#include "tools/sxml/field_text.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "tools/sxml/errors.h"

namespace command {

namespace {

bool is_inside_character(std::uint8_t byte) {
    return (byte & 0xC0) == 0x80;
}

std::span<const std::uint8_t> without_spaces(std::span<const std::uint8_t> text) {
    while (!text.empty() && text.front() == ' ') text = text.subspan(1);
    while (!text.empty() && text.back() == ' ') text = text.first(text.size() - 1);
    return text;
}

std::string character_name(std::int32_t character) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "U+%04X", static_cast<unsigned>(character));
    return text.data();
}

}  // namespace

FieldText::FieldText(DocumentText from, const CharacterSet& to)
    : from_(from),
      to_(to),
      converts_(!(from == DocumentText::utf8 && to.is_utf8()) &&
                !(from == DocumentText::latin1 && to.declared_name() == "ISO-8859-1" &&
                  !to.is_ebcdic())) {
    if (to.is_utf8()) return;
    for (std::size_t byte = 0; byte < to.characters().size(); ++byte) {
        bytes_.emplace(to.characters()[byte], static_cast<std::uint8_t>(byte));
    }
}

// Texts are valid UTF-8, unless fields share bytes.
std::int32_t FieldText::next_character(std::span<const std::uint8_t>& text) const {
    const std::uint8_t first = text.front();
    std::size_t length = 1;
    std::int32_t character = first;
    if (from_ == DocumentText::utf8 && first >= 0xC0) {
        length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
        character = first & (0x7F >> length);
        if (length > text.size()) fail("its last character was cut off");
        for (std::size_t i = 1; i < length; ++i) character = character << 6 | (text[i] & 0x3F);
    }
    text = text.subspan(length);
    return character;
}

void FieldText::append(std::int32_t character) {
    if (to_.is_utf8()) {
        // From ISO-8859-1 only, so two bytes are enough.
        if (character < 0x80) {
            converted_.push_back(static_cast<std::uint8_t>(character));
        } else {
            converted_.push_back(static_cast<std::uint8_t>(0xC0 | character >> 6));
            converted_.push_back(static_cast<std::uint8_t>(0x80 | (character & 0x3F)));
        }
        return;
    }
    const auto found = bytes_.find(character);
    if (found == bytes_.end()) {
        fail("its character " + character_name(character) + " is not in " + to_.name());
    }
    converted_.push_back(found->second);
}

std::uint8_t FieldText::space() const {
    return to_.is_ebcdic() ? std::uint8_t{0x40} : static_cast<std::uint8_t>(' ');
}

std::size_t FieldText::fitting(std::string_view text, std::size_t size) const {
    if (text.size() <= size) return text.size();
    const auto byte_at = [text](std::size_t at) { return static_cast<std::uint8_t>(text[at]); };
    if (from_ == DocumentText::utf8) {
        while (size > 0 && is_inside_character(byte_at(size))) --size;
    }
    return size;
}

FieldText::Converted FieldText::convert(std::span<const std::uint8_t> text, std::size_t size,
                                        TextSide side) {
    text = without_spaces(text);
    converted_.clear();
    std::size_t fitting = 0;
    while (!text.empty()) {
        append(next_character(text));
        if (converted_.size() <= size) fitting = converted_.size();
    }
    const std::size_t whole = converted_.size();
    converted_.resize(fitting);
    const auto gap = side == TextSide::right ? converted_.begin() : converted_.end();
    converted_.insert(gap, size - fitting, space());
    return {converted_, whole};
}

}  // namespace command
