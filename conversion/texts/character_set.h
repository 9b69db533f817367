// The character set of the records' text, and how it reaches the document.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "conversion/problem.h"

namespace conversion {

// What a byte of text is to a document.
enum class ByteClass : std::uint8_t {
    plain,          // a character that XML allows
    nul,            // ends the field
    forbidden,      // a control character that XML does not allow
    undefined,      // no character of this character set
    not_in_target,  // a character that the document's encoding lacks
    multi_byte      // part of a UTF-8 character of several bytes
};

// A character set. Text in UTF-8 and in single-byte sets that extend ASCII goes into the document
// as it is, and the document declares that encoding. Text in EBCDIC is translated to ISO-8859-1.
class CharacterSet {
  public:
    // The set of this name. A problem (wrong usage) for a name that is not known, for sets that are
    // neither EBCDIC nor an extension of ASCII, and for those of several bytes a character other
    // than UTF-8.
    static Result<CharacterSet> find(const std::string& name);

    // As the user wrote it.
    const std::string& name() const { return name_; }
    // The encoding that the document declares.
    const std::string& declared_name() const { return declared_name_; }
    bool is_utf8() const { return utf8_; }
    bool is_ebcdic() const { return ebcdic_; }
    std::uint8_t space() const { return ebcdic_ ? std::uint8_t{0x40} : std::uint8_t{' '}; }
    ByteClass classify(std::uint8_t byte) const { return classes_[byte]; }
    const std::array<ByteClass, 256>& classes() const { return classes_; }
    // The character (Unicode) of each byte of a single-byte set; negative where there is none.
    const std::array<std::int32_t, 256>& characters() const { return characters_; }
    // ISO-8859-1 for each byte of an EBCDIC set.
    const std::array<std::uint8_t, 256>& translation() const { return translation_; }

  private:
    explicit CharacterSet(std::string name) : name_(std::move(name)) {}
    void become_utf8();
    // False when the set is neither EBCDIC nor an extension of ASCII.
    bool become_single_byte(const std::array<std::int32_t, 256>& characters);

    std::string name_;
    std::string declared_name_;
    bool utf8_ = false;
    bool ebcdic_ = false;
    std::array<ByteClass, 256> classes_{};
    std::array<std::int32_t, 256> characters_{};
    std::array<std::uint8_t, 256> translation_{};
};

}  // namespace conversion
