// A document that a program has open.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "conversion/documents/document_source.h"
#include "conversion/session/input_document.h"
#include "conversion/session/output_document.h"
#include "conversion/texts/character_set.h"
#include "gnucobol/document/extension.h"
#include "gnucobol/document/private_document.h"
#include "gnucobol/layout.h"

namespace gnucobol {

class OpenFile {
  public:
    // An optional file that is not there: reading it ends at once.
    OpenFile(std::string path, cob_file& file);
    // A document to read.
    OpenFile(std::string path, cob_file& file, FileLayout layout,
             conversion::DocumentSource source);
    // A document to write, with texts in these characters; with an extension, more records of it.
    OpenFile(std::string path, cob_file& file, FileLayout layout,
             conversion::CharacterSet characters, PrivateDocument document,
             std::unique_ptr<Extension> extension);

    // What came of opening. Only when it is done or the optional file is missing may the others be
    // called.
    const Result& opening() const { return opening_; }
    const std::string& path() const { return path_; }
    cob_file& file() const { return file_; }
    bool is_output() const { return document_.has_value(); }
    const FileLayout& layout() const { return *layout_; }

    // The next record, into the program's record area.
    Result read();
    // Writes `length` bytes of the record area. `where` and `expression`, of the record in the C
    // code, tell which 01 it is; both are the program's and stay as they are.
    Result write(std::uint32_t length, const Where& where, const char* expression);
    // Completes a document that is written, and gives it its name; closes one that is read.
    Result complete();
    // Prevents the document from becoming complete: output to a pipe gets no end tag.
    void drop();
    // The document belongs to the process that this one began as a copy of.
    void leave_to_parent();

  private:
    // Bytes that are in no field of a layout.
    struct Gap {
        std::uint32_t begin;
        std::uint32_t end;
    };
    void find_gaps();
    const std::vector<conversion::RecordLayout>& layouts() const;
    const std::string& name_of_record(const Where& where, const char* expression);
    std::optional<std::size_t> choose_layout(const std::string& record);
    bool holds(const conversion::RecordLayout& layout);
    std::optional<std::uint32_t> byte_without_field(std::size_t layout, std::uint32_t length) const;
    Result tell_troubles();
    Result tell_byte_without_field(std::uint32_t byte);
    std::uint32_t layout_length() const;
    std::uint32_t length_of_record_read() const;
    std::uint32_t length_of_text() const;
    bool is_one_text() const;
    std::uint32_t longest() const { return static_cast<std::uint32_t>(file_.record_max); }
    std::uint32_t shortest() const { return static_cast<std::uint32_t>(file_.record_min); }

    std::string path_;
    cob_file& file_;
    std::optional<conversion::DocumentSource> source_;
    std::optional<conversion::CharacterSet> characters_;
    std::optional<PrivateDocument> document_;
    std::unique_ptr<Extension> extension_;
    std::optional<FileLayout> layout_;
    std::unique_ptr<conversion::InputDocument> input_;
    std::unique_ptr<conversion::OutputDocument> output_;
    std::string written_name_;            // of the file that is written to
    std::vector<std::vector<Gap>> gaps_;  // by layout
    // Names of the records of statements that have written, by source and expression.
    std::map<std::pair<const char*, const char*>, std::string> names_;
    bool ended_ = false;
    bool has_told_bytes_ = false;  // of bytes that have no field
    Result opening_;
    std::optional<Result> failure_;
};

// Writes a document without records.
Result write_empty_document(const FileLayout& layout, const conversion::CharacterSet& characters,
                            const std::string& name);

}  // namespace gnucobol
