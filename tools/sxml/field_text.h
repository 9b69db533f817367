// Texts of a document's fields in the character set of the records.
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string_view>
#include <vector>

#include "tools/sxml/character_set.h"

namespace command {

enum class DocumentText { utf8, latin1 };  // in what the module hands texts over

enum class TextSide { left, right };  // of the field, where the text stands

// Converts the contents of character fields.
class FieldText {
  public:
    FieldText(DocumentText from, const CharacterSet& to);

    // False when texts can stay as they are.
    bool converts() const { return converts_; }
    // How many of a document's text's bytes fit into `size` as whole characters.
    std::size_t fitting(std::string_view text, std::size_t size) const;

    struct Converted {
        std::span<const std::uint8_t> field;  // filled up with spaces; valid until the next call
        std::size_t whole;                    // bytes that the whole text takes
    };
    // Converts a text, with or without spaces around it, for a field of `size` bytes, and cuts it
    // behind the last character that fits. Throws Failure when a character is not in the character
    // set.
    Converted convert(std::span<const std::uint8_t> text, std::size_t size, TextSide side);

  private:
    std::int32_t next_character(std::span<const std::uint8_t>& text) const;
    void append(std::int32_t character);
    std::uint8_t space() const;

    DocumentText from_;
    const CharacterSet& to_;
    bool converts_;
    std::map<std::int32_t, std::uint8_t> bytes_;  // of a single-byte set
    std::vector<std::uint8_t> converted_;
};

}  // namespace command
