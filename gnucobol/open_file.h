// An XML file that a program has open.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "gnucobol/blank_record.h"
#include "gnucobol/fcd.h"
#include "gnucobol/layout.h"
#include "gnucobol/xml_module.h"

namespace gnucobol {

struct Result {
    Status status = Status::done;
    std::string reason;  // of a failure, for the message; may be empty
};

class OpenFile final : private ConditionWatch {
  public:
    // An optional file that is not there: reading it ends at once.
    OpenFile(std::string path, const FCD3& fcd);
    // Opens the document. Throws std::runtime_error when the module cannot be loaded; otherwise
    // result() tells what came of it.
    OpenFile(std::string path, const FCD3& fcd, FileLayout layout, std::int32_t direction);
    ~OpenFile() override;

    const Result& opening() const { return opening_; }
    const std::string& path() const { return path_; }
    const std::string& assigned() const { return assigned_; }
    const unsigned char* record_area() const { return record_area_; }

    Result read(FCD3& fcd);
    Result write(const FCD3& fcd);
    // Ends and closes the document. What could not be stored shows in the failures of the host's
    // files, and then in failure().
    void close();

    // A failure found while the document was written; it stays with the file.
    void fail_writing(int error);
    const std::optional<Result>& failure() const { return failure_; }

    // The runtime's own record of the file, once it is known. It must learn of a close, since its
    // DELETE FILE looks at it.
    cob_file* program_file = nullptr;

  private:
    void condition_holds(int number) override;
    std::uint32_t length_of_record_read(const FCD3& fcd) const;

    std::string path_;
    std::string assigned_;
    const unsigned char* record_area_;
    std::optional<FileLayout> layout_;
    std::optional<BlankRecord> blank_;
    std::vector<std::uint8_t> record_;    // the record being read
    std::vector<std::uint32_t> lengths_;  // of the layouts, by condition; 0 for no layout
    std::uint32_t layout_length_ = 0;     // of the layout just read, 0 for the longest
    XmlFile* xml_ = nullptr;
    std::int32_t direction_ = 0;
    bool ended_ = false;
    Result opening_;
    std::optional<Result> failure_;
};

}  // namespace gnucobol
