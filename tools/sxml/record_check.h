// Finds what would make a document ill-formed before it is written.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "tools/sxml/character_set.h"

namespace command {

// Something in a field's text that a document cannot hold.
struct TextProblem {
    std::int32_t position;  // of the byte in the field, from 0
    std::string reason;     // what it is and what can be done
};

// Checks texts of one character set.
class TextCheck {
  public:
    explicit TextCheck(const CharacterSet& characters);

    // The first problem of a text. Allowed are the characters that XML 1.0 allows, and NUL bytes
    // that fill up the end of the text.
    std::optional<TextProblem> check(const std::uint8_t* text, std::int32_t length) const {
        std::uint8_t seen = 0;
        for (std::int32_t i = 0; i < length; ++i) seen |= special_[text[i]];
        if (seen == 0) return std::nullopt;
        return look_closely(text, length);
    }

  private:
    std::optional<TextProblem> look_closely(const std::uint8_t* text, std::int32_t length) const;
    std::string reason_for(std::uint8_t byte) const;

    const CharacterSet& characters_;
    std::array<std::uint8_t, 256> special_{};  // 0 for plain characters
};

}  // namespace command
