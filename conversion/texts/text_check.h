// Finds bytes that would make a document ill-formed, or be lost in it, before it is written.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "conversion/texts/character_set.h"
#include "conversion/texts/text_form.h"
#include "host/ascii_words.h"

namespace conversion {

// The remedy for text that is not valid UTF-8. A face that has a better way replaces it.
inline constexpr const char* NAME_THE_CHARACTER_SET =
    "if the text is in another character set, name it: SXML_ENCODING=ISO-8859-1";

// Something in a field's text that a document cannot hold.
struct TextProblem {
    std::int32_t position;  // of the byte in the field, from 0
    std::string what;
    std::string remedy;
};

// Checks texts of one character set, which must outlive this.
class TextCheck {
  public:
    // `allows_controls`: control characters, and NUL bytes with text after them, are not reported.
    explicit TextCheck(const CharacterSet& characters, bool allows_controls = false);

    // The first problem of a text. Allowed are the characters that XML 1.0 allows, and NUL bytes
    // that fill up the end of the text.
    std::optional<TextProblem> check(const std::uint8_t* text, std::int32_t length,
                                     TextForm form = TextForm::plain) const {
        if (form != TextForm::plain) return look_at_characters(text, length, form);
        if (is_unproblematic(text, length)) return std::nullopt;
        std::uint8_t seen = 0;
        for (std::int32_t i = 0; i < length; ++i) seen |= special_[text[i]];
        if (seen == 0) return std::nullopt;
        return look_closely(text, length);
    }

    // Whether a short look shows that no part of the text, taken as plain, has a problem.
    bool is_unproblematic(const std::uint8_t* text, std::int32_t length) const {
        return is_ascii_plain_ && ascii::is_printable(reinterpret_cast<const char*>(text),
                                                      static_cast<std::size_t>(length));
    }

  private:
    std::optional<TextProblem> look_closely(const std::uint8_t* text, std::int32_t length) const;
    std::optional<TextProblem> look_at_characters(const std::uint8_t* text, std::int32_t length,
                                                  TextForm form) const;
    TextProblem problem_of(std::int32_t position, std::uint8_t byte) const;
    std::string lacking(const std::string& set) const;

    const CharacterSet& characters_;
    bool allows_controls_;
    bool is_limited_;                          // to the characters of ISO-8859-1
    std::array<std::uint8_t, 256> special_{};  // 0 for plain characters
    bool is_ascii_plain_ = true;               // from the blank to 0x7F
};

}  // namespace conversion
