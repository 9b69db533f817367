// An XML file that a program has open.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "conversion/documents/document_source.h"
#include "conversion/fields/single_entry.h"
#include "gnucobol/blank_record.h"
#include "gnucobol/fcd.h"
#include "gnucobol/layout.h"
#include "gnucobol/record_layouts.h"
#include "gnucobol/record_text.h"
#include "gnucobol/xml_module.h"

namespace gnucobol {

struct Result {
    Status status = Status::done;
    std::string reason;  // of a failure, for the message; may be empty
};

// What a program is told when writing fails with this error of the system.
Status status_of_write_error(int error);

class OpenFile final : private RecordWatch {
  public:
    // An optional file that is not there: reading it ends at once.
    OpenFile(std::string path, const FCD3& fcd, cob_file* program_file);
    // Opens the document. Throws std::runtime_error when the module cannot be loaded; otherwise
    // result() tells what came of it.
    OpenFile(std::string path, const FCD3& fcd, cob_file* program_file, FileLayout layout,
             conversion::DocumentSource source, std::int32_t direction);
    ~OpenFile() override;

    const Result& opening() const { return opening_; }
    const std::string& path() const { return path_; }
    // The runtime's own record of the file; may be null. It must be told of a close, since its
    // DELETE FILE looks at it, and of the length of a record.
    cob_file* program_file() const { return program_file_; }

    bool is_output() const { return xml_ != nullptr && direction_ == XML_OPEN_OUTPUT; }
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
    void condition_holds(int number) override;
    void number_stored(const void* place) override;
    std::uint32_t layout_length(std::uint32_t longest) const;
    void tell_program(std::uint32_t length);
    std::uint32_t length_of_record_read(const FCD3& fcd, std::uint32_t filled) const;
    std::uint32_t length_of_text() const;
    std::uint32_t longest_layout() const;
    const std::uint8_t* with_whole_fields(const std::uint8_t* record, std::uint32_t& length);

    std::string path_;
    cob_file* program_file_;
    std::optional<conversion::DocumentSource> source_;
    std::optional<FileLayout> layout_;
    std::optional<BlankRecord> blank_;
    std::vector<std::uint8_t> record_;  // the record being read, or written when it was cut
    std::vector<RecordLayout> layouts_;
    std::optional<RecordText> text_;
    std::optional<documents::SingleEntry> single_entry_;
    std::vector<bool> held_;  // conditions that held for that record, by number
    XmlFile* xml_ = nullptr;
    std::int32_t direction_ = 0;
    bool ended_ = false;
    bool awaits_description_ = false;
    Result opening_;
    std::optional<Result> failure_;
};

}  // namespace gnucobol
