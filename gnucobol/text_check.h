// Finds what would make a document ill-formed, or be lost in it, before it is written.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace gnucobol {

class TextCheck {
  public:
    // For documents in this encoding, which extends ASCII; empty for UTF-8.
    explicit TextCheck(const std::string& encoding);

    // What is wrong with the text of a field, and what can be done; nothing when it is right. NUL
    // bytes may fill up its end.
    std::optional<std::string> problem(const std::uint8_t* text, std::size_t length) const {
        std::uint8_t seen = 0;
        for (std::size_t i = 0; i < length; ++i) seen |= special_[text[i]];
        return seen == 0 ? std::nullopt : closer_look(text, length);
    }

  private:
    std::optional<std::string> closer_look(const std::uint8_t* text, std::size_t length) const;

    std::string encoding_;
    std::array<std::uint8_t, 256> special_{};  // 0 for characters that are always right
};

// Blanks the bytes at the end of a text in UTF-8 that are the beginning of a character.
void blank_cut_character(std::uint8_t* text, std::size_t length);

}  // namespace gnucobol
