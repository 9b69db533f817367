// Texts of a document's fields in the character set of the records.
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <vector>

#include "tools/sxml/character_set.h"

namespace command {

enum class DocumentText { utf8, latin1 };  // in what the module hands texts over

// Converts the contents of character fields.
class FieldText {
  public:
    FieldText(DocumentText from, const CharacterSet& to);

    // False when texts can stay as they are.
    bool converts() const { return converts_; }
    // Converts a field that is filled up with spaces. The result has the field's length and is
    // valid until the next call. Throws Failure when it does not fit, when a character is not in
    // the character set, and when a character or more may have been cut off before.
    std::span<const std::uint8_t> convert(std::span<const std::uint8_t> field);

  private:
    std::int32_t next_character(std::span<const std::uint8_t>& text) const;
    void append(std::int32_t character);

    DocumentText from_;
    const CharacterSet& to_;
    bool converts_;
    std::map<std::int32_t, std::uint8_t> bytes_;  // of a single-byte set
    std::vector<std::uint8_t> converted_;
};

}  // namespace command
