// The file for records that cannot be converted, so that the run can go on without them.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "conversion/formats/record_format.h"
#include "conversion/session/input_document.h"
#include "tools/sxml/atomic_output.h"
#include "tools/sxml/run_report.h"

namespace command {

// Takes the place of its target when the run is complete. Functions throw Failure.
class RejectFile {
  public:
    // Opens the file, when the options name one.
    explicit RejectFile(const ReportOptions& options);

    // False: nobody wants rejected records, and the first one ends the run.
    bool is_wanted() const { return output_.has_value(); }
    // A record of a record file, as it was.
    void add(std::span<const std::uint8_t> record, const conversion::RecordFormat& format);
    // The record of a document that was read last, as it stands there, after a comment that says
    // why. The file becomes a document, too.
    void add(conversion::InputDocument& document, const conversion::Problem& problem);
    std::uint64_t count() const { return count_; }
    // Ends the file; of a document also when no record was rejected.
    void finish_records();
    void finish_document();

  private:
    void count_one();
    void begin_document(const std::string& encoding);
    void write(const std::string& text);
    void finish();

    std::uint64_t most_;
    std::optional<AtomicOutput> output_;
    std::optional<conversion::ByteSink> sink_;
    std::unique_ptr<conversion::RecordWriter> writer_;
    std::uint64_t count_ = 0;
    bool has_begun_ = false;
};

}  // namespace command
