// Where a large document is cut into parts that several processes read at the same time, without
// looking at all of it first.
//
// A part is read as a document of its own: what stands before the first record, the part, and the
// end tag of the document element. Cuts are guessed: after what looks like the end tag of a record.
// Whether a cut was right is known once the part before it has been read. That part began between
// two records, and where it and the end tag make a well-formed document, it ends between two
// records, too; one that ends within a record, a comment, a CDATA section or after the end of the
// document does not.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "conversion/documents/expat_position.h"
#include "conversion/problem.h"

namespace conversion {

class DocumentParts {
  public:
    // Looks at the beginning of the document in a regular file. Nothing when it has to be read as a
    // whole: it declares entities or has an external subset, which all parts would count by
    // themselves; it is not in UTF-8, ASCII or ISO-8859-1; it has no records, or is not well-formed
    // so far. `part_size`: in bytes. A problem when it cannot be read. Throws std::bad_alloc.
    static Result<std::optional<DocumentParts>> of(const std::string& file,
                                                   const std::string& shown_name,
                                                   std::uint64_t part_size);

    // How many there are. Some are empty, where records are large.
    std::uint64_t count() const;
    // The bytes of a part, from 0. It does not depend on whether the cuts are right. Throws
    // std::bad_alloc.
    Result<ByteRange> bytes(std::uint64_t part) const;
    // What stands before the records.
    const std::string& beginning() const { return beginning_; }
    // What completes all parts but the last.
    const std::string& end_tag() const { return end_tag_; }
    // Of the file, in bytes.
    std::uint64_t size() const { return size_; }

  private:
    DocumentParts() = default;
    std::uint64_t guess(std::uint64_t part) const;
    Result<std::optional<std::uint64_t>> find_cut(std::uint64_t begin, std::uint64_t end) const;
    std::optional<std::size_t> end_of_record_tag(std::string_view text) const;

    std::string file_;
    std::string shown_name_;
    std::uint64_t size_ = 0;
    std::uint64_t part_size_ = 1;
    std::string beginning_;
    std::string end_tag_;
    std::vector<std::string> names_;  // of the first records' elements, as they are written
};

}  // namespace conversion
