// Takes the text of a field apart into characters.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "conversion/texts/character_set.h"
#include "conversion/texts/text_form.h"

namespace conversion {

class TextDecoder {
  public:
    struct Character {
        std::int32_t code;  // Unicode; negative when the bytes are none of the set's characters
        std::size_t start;  // offset of its first byte
        std::size_t length;
    };

    // The set must outlive this.
    TextDecoder(std::span<const std::uint8_t> bytes, const CharacterSet& characters, TextForm form)
        : bytes_(bytes), characters_(characters), form_(form) {}

    // The next character; nothing at the end, of bytes or of a text that NUL bytes fill up. Shifts
    // are skipped; a missing or superfluous one counts as no character.
    std::optional<Character> next();

    // Whether the character is a blank, which is left out at a text's end: the space, and in fields
    // of characters of two bytes the ideographic one.
    bool is_blank(const Character& character) const {
        constexpr std::int32_t IDEOGRAPHIC_SPACE = 0x3000;
        return character.code == ' ' ||
               (form_ == TextForm::double_byte && character.code == IDEOGRAPHIC_SPACE);
    }

  private:
    Character take(std::int32_t code, std::size_t length);
    bool is_filled_up() const;
    std::optional<Character> next_plain();
    Character next_pair();
    Character next_utf16();

    std::span<const std::uint8_t> bytes_;
    const CharacterSet& characters_;
    TextForm form_;
    std::size_t position_ = 0;
    bool is_shifted_ = false;
};

}  // namespace conversion
