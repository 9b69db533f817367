// Where a document comes from: a file, standard input, or the web.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "conversion/documents/attribute_elements.h"
#include "conversion/problem.h"
#include "platform/temporary_files.h"

namespace conversion {

// True for the addresses of documents on the web ("http:" and "https:", in any letter case).
bool is_url(const std::string& name);

// Data that belongs to no record: outside the records at a path, or in attributes of the document
// element.
struct LeftOut {
    std::uint64_t texts = 0;
    std::uint64_t attributes = 0;
    Place first{};
};

// A problem (wrong usage) unless the text is a path to records, such as orders/page/order: the
// document element and at least one more name.
Done check_record_path(const std::string& path);

// A document as a file. Of standard input or a web address, a private copy is kept, which is
// removed with this object.
class DocumentSource {
  public:
    enum class Pipes { copied, as_they_are };

    // The document of this name: an address, "-" for standard input, or a file, also one that has
    // ".xml" added to its name. With Pipes::copied the file can be read more than once, whatever it
    // is; otherwise pipes and devices are not touched.
    static Result<DocumentSource> open(const std::string& name, Pipes pipes = Pipes::copied);
    // The document with the elements at a path, such as orders/page/order, for its records: a
    // private copy in which everything else within the document element is spaces, so that each
    // record has the line, column and byte offset that it has here. In constant memory. A problem
    // for a document that is not well-formed, and when there is no such element. Throws
    // std::bad_alloc.
    Result<DocumentSource> with_records_at(const std::string& path) const;
    // The document with its attributes as elements, as AttributeElements has them: a private copy
    // in UTF-8 or, of a document in ISO-8859-1, in that, without comments, processing instructions
    // and DOCTYPE. In constant memory. A problem for a document that is not well-formed. Throws
    // std::bad_alloc.
    Result<DocumentSource> with_attributes_as_elements(const AttributeRule& rule) const;
    // A file, whether it exists or not.
    static DocumentSource of_file(const std::string& file) { return {file, file}; }

    // Of a document that was made by with_records_at() or with_attributes_as_elements().
    LeftOut left_out() const { return counted_.value_or(LeftOut{}); }
    // What with_attributes_as_elements() was made of; empty: it was not. Must stay.
    const std::string& original() const { return original_; }
    const AttributeRule& attributes() const { return attributes_; }

    // As it is shown in messages.
    const std::string& name() const { return name_; }
    // The file. A copy, and a file that open() has found, has a name that is neither an address nor
    // "-".
    const std::string& file() const { return file_; }

  private:
    DocumentSource(std::string name, std::string file)
        : name_(std::move(name)), file_(std::move(file)) {}
    // The private file that a copy goes into, as `source`.
    static Result<DocumentSource> empty_copy(const std::string& name);
    static Result<DocumentSource> fetch(const std::string& url);
    static Result<DocumentSource> copy(const std::string& name);

    std::string name_;
    std::string file_;
    std::optional<platform::TemporaryFile> copy_;
    std::optional<LeftOut> counted_;  // nothing: not looked for
    std::string original_;
    AttributeRule attributes_;
};

}  // namespace conversion
