// The file for records that cannot be converted, so that the run can go on without them.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "conversion/formats/record_format.h"
#include "conversion/session/input_document.h"
#include "tools/sxml/output/atomic_output.h"
#include "tools/sxml/reports/run_report.h"

namespace command {

// Where records go that cannot be converted. Functions throw Failure.
class Rejects {
  public:
    Rejects() = default;
    virtual ~Rejects() = default;
    Rejects(const Rejects&) = delete;
    Rejects& operator=(const Rejects&) = delete;

    // False: rejected records are not wanted, and the first one ends the run.
    virtual bool is_wanted() const = 0;
    // A record of a record file, unchanged.
    virtual void add(std::span<const std::uint8_t> record,
                     const conversion::RecordFormat& format) = 0;
    // The record of a document that was read last.
    virtual void add(conversion::InputDocument& document, const conversion::Problem& problem) = 0;
    // There are no more; of a document also when none was rejected.
    virtual void finish_records() = 0;
    virtual void finish_document() = 0;
};

// A file of them, which takes the place of its target when the run is complete.
class RejectFile : public Rejects {
  public:
    // Opens the file, when the options name one. The input's name is for messages.
    RejectFile(const ReportOptions& options, std::string input);

    bool is_wanted() const override { return output_.has_value(); }
    void add(std::span<const std::uint8_t> record, const conversion::RecordFormat& format) override;
    // As it stands in the document, after a comment that says why. The file becomes a document,
    // too.
    void add(conversion::InputDocument& document, const conversion::Problem& problem) override;
    // The same for a record in this encoding.
    void add(const std::string& record, const std::string& encoding,
             const conversion::Problem& problem);
    std::uint64_t count() const { return count_; }
    // Whether the limit allows that many more.
    bool takes(std::uint64_t more) const { return more <= most_ - count_; }
    void finish_records() override;
    void finish_document() override;

  private:
    void count_one();
    void begin_document(const std::string& encoding);
    void write(const std::string& text);
    void finish();

    std::uint64_t most_;
    std::string input_;
    std::optional<AtomicOutput> output_;
    std::optional<conversion::ByteSink> sink_;
    std::unique_ptr<conversion::RecordWriter> writer_;
    std::uint64_t count_ = 0;
    bool has_begun_ = false;
};

}  // namespace command
