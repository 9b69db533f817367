// Texts of a document in the character set of the records.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "conversion/texts/character_set.h"

namespace conversion {

enum class DocumentText { utf8, latin1 };  // in what the module hands texts over

// Converts the contents of character fields.
class FieldText {
  public:
    // `to` must outlive this.
    FieldText(DocumentText from, const CharacterSet& to);

    // False when texts can stay as they are.
    bool converts() const { return converts_; }
    // Converts a text into `converted`. Result: the first character that is not in the character
    // set; nothing when all are.
    std::optional<char32_t> convert(std::string_view text, std::string& converted) const;
    // How many of the first `size` bytes of a text in the records' character set are whole
    // characters.
    std::size_t fitting(std::string_view text, std::size_t size) const;

  private:
    DocumentText from_;
    const CharacterSet& to_;
    bool converts_;
    std::map<char32_t, char> bytes_;  // of a single-byte set
};

}  // namespace conversion
