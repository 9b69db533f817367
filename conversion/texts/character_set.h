// The character set of the records' text, and how it reaches the document.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "conversion/problem.h"
#include "platform/double_bytes.h"

namespace conversion {

// What a byte of text is to a document.
enum class ByteClass : std::uint8_t {
    plain,          // a character that XML allows
    nul,            // ends the field
    forbidden,      // a control character that XML does not allow
    undefined,      // no character of this character set
    not_in_target,  // a character that the document's encoding lacks
    multi_byte      // part of a character of several bytes, or a shift
};

// Whether the code is that of a control character that XML 1.0 does not allow, or negative.
inline bool is_control(std::int32_t code) {
    return code < 0x20 && code != '\t' && code != '\n' && code != '\r';
}

// What documents are in. single_byte: the set of the records, or ISO-8859-1 for those in EBCDIC.
enum class DocumentEncoding : std::uint8_t { utf8, single_byte };

// Of records in the set called `encoding`, where the document's encoding is set to `configured`
// (SXML_ENCODING; either may be empty): single_byte when that is ISO-8859-1, or this very set.
DocumentEncoding document_encoding(const std::string& encoding, const std::string& configured);

// A character set. Text in UTF-8 and ISO-8859-1 goes into the document as it is, and the document
// declares that encoding. Text in other sets is converted, unless the document is in that set.
class CharacterSet {
  public:
    // The set of this name. A problem (wrong usage) for a name that is not known, for sets that are
    // neither EBCDIC nor an extension of ASCII, for those of several bytes a character of which the
    // system does not know the characters of two bytes, or that are to be in a single-byte set.
    static Result<CharacterSet> find(const std::string& name,
                                     DocumentEncoding encoding = DocumentEncoding::single_byte);

    // As the user wrote it.
    const std::string& name() const { return name_; }
    // The encoding that the document declares.
    const std::string& declared_name() const { return declared_name_; }
    bool is_utf8() const { return utf8_; }
    bool is_ebcdic() const { return ebcdic_; }
    std::uint8_t space() const { return ebcdic_ ? std::uint8_t{0x40} : std::uint8_t{' '}; }
    ByteClass classify(std::uint8_t byte) const { return classes_[byte]; }
    const std::array<ByteClass, 256>& classes() const { return classes_; }
    // Whether the document has texts in another form than the records.
    bool converts() const { return converts_; }
    bool is_latin1_document() const { return declared_name_ == "ISO-8859-1"; }
    // Characters of two bytes; in EBCDIC they stand between these.
    static constexpr std::uint8_t SHIFT_OUT = 0x0E;
    static constexpr std::uint8_t SHIFT_IN = 0x0F;
    bool has_pairs() const { return pairs_ != nullptr; }
    bool has_shifts() const { return has_pairs() && pairs_->has_shifts; }
    bool is_lead(std::uint8_t byte) const { return has_pairs() && pairs_->is_lead[byte]; }
    // Unicode; negative when there is no such character (as in platform::DoubleByteSet).
    std::int32_t pair(std::uint8_t first, std::uint8_t second) const {
        return pairs_->pairs[std::size_t{first} << 8 | second];
    }
    // Whether texts are written with this pair; the character of another one has several.
    bool writes(std::uint8_t first, std::uint8_t second) const {
        return !pairs_->is_read_only[std::size_t{first} << 8 | second];
    }
    // The character (Unicode) of each byte of a single-byte set; negative where there is none.
    const std::array<std::int32_t, 256>& characters() const { return characters_; }

  private:
    explicit CharacterSet(std::string name) : name_(std::move(name)) {}
    void become_utf8();
    // False when the set is neither EBCDIC nor an extension of ASCII.
    bool become_single_byte(const std::array<std::int32_t, 256>& characters,
                            DocumentEncoding encoding);
    void classify_bytes(bool is_limited);
    // multi_byte: done; no_memory; unknown: the set is neither EBCDIC nor an extension of ASCII.
    platform::CharacterSetKind become_double_byte();

    std::string name_;
    std::string declared_name_;
    bool utf8_ = false;
    bool ebcdic_ = false;
    bool converts_ = false;
    std::array<ByteClass, 256> classes_{};
    std::array<std::int32_t, 256> characters_{};
    std::shared_ptr<const platform::DoubleByteSet> pairs_;
};

}  // namespace conversion
