// Texts of a document in the character set of the records.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "conversion/texts/character_set.h"
#include "conversion/texts/text_form.h"

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
    std::optional<char32_t> convert(std::string_view text, std::string& converted,
                                    TextForm form = TextForm::plain) const;
    // How many of the first `size` bytes of a text that stays as it is are whole characters.
    std::size_t fitting(std::string_view text, std::size_t size) const;
    // Leaves of a converted text as many whole characters as `size` bytes hold, with the shift
    // after them.
    void cut(std::string& converted, std::size_t size, TextForm form) const;

  private:
    bool append(char32_t code, std::string& converted, TextForm form, bool& is_shifted) const;
    bool append_pair(char32_t code, std::string& converted) const;
    void cut_plain(std::string& converted, std::size_t size) const;

    DocumentText from_;
    const CharacterSet& to_;
    bool converts_;
    std::map<char32_t, char> bytes_;                     // characters of one byte
    std::unordered_map<char32_t, std::uint16_t> pairs_;  // and of two
};

}  // namespace conversion
