// An XML file that a program has open.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "conversion/documents/document_source.h"
#include "conversion/session/input_document.h"
#include "conversion/session/output_document.h"
#include "gnucobol/fcd.h"
#include "gnucobol/layout.h"

namespace gnucobol {

struct Result {
    Status status = Status::done;
    std::string reason;  // of a failure, for the message; may be empty
};

// What a program is told when writing fails with this error of the system.
Status status_of_write_error(int error);

class OpenFile {
  public:
    // An optional file that is not there: reading it ends at once.
    OpenFile(std::string path, cob_file* program_file);
    // Opens a document for input; opening() tells what came of it.
    OpenFile(std::string path, cob_file* program_file, FileLayout layout,
             conversion::DocumentSource source);
    // The same for output, with texts in this character set.
    OpenFile(std::string path, cob_file* program_file, FileLayout layout,
             conversion::CharacterSet characters);
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile();

    const Result& opening() const { return opening_; }
    const std::string& path() const { return path_; }
    // The runtime's own record of the file; may be null. It must be told of a close, since its
    // DELETE FILE looks at it, and of the length of a record.
    cob_file* program_file() const { return program_file_; }

    bool is_output() const { return output_ != nullptr; }
    // Whether the runtime has dropped the description that carried this object, and makes another.
    bool awaits_description() const { return awaits_description_; }
    void await_description(bool awaits) { awaits_description_ = awaits; }

    Result read(FCD3& fcd);
    Result write(const FCD3& fcd);
    // Ends and closes the document. What could not be stored shows in the failures of the host's
    // files, and then in failure().
    void close();

    // A failure found while the document was written; it stays with the file.
    void fail_writing(int error);
    const std::optional<Result>& failure() const { return failure_; }

  private:
    std::uint32_t layout_length(std::uint32_t longest) const;
    void tell_program(std::uint32_t length);
    std::uint32_t length_of_record_read(const FCD3& fcd, std::uint32_t filled) const;
    std::uint32_t length_of_text() const;
    std::uint32_t longest_layout() const;
    bool is_one_text() const;
    const std::vector<conversion::RecordLayout>& layouts() const;

    std::string path_;
    cob_file* program_file_;
    std::optional<conversion::DocumentSource> source_;
    std::optional<FileLayout> layout_;
    std::optional<conversion::CharacterSet> characters_;  // of texts that are written
    std::unique_ptr<conversion::InputDocument> input_;
    std::unique_ptr<conversion::OutputDocument> output_;
    bool ended_ = false;
    bool awaits_description_ = false;
    Result opening_;
    std::optional<Result> failure_;
};

}  // namespace gnucobol
