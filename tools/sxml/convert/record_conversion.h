// The loop from records to a document.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

#include "conversion/session/output_document.h"
#include "records/description.h"
#include "tools/sxml/options/record_input.h"
#include "tools/sxml/output/atomic_output.h"
#include "tools/sxml/reports/reject_file.h"
#include "tools/sxml/reports/run_report.h"

namespace command {

// Writes the records of a file one by one, and reports problems. Everything
// given must outlive this.
class RecordConversion {
  public:
    // Opens the document. Throws Failure.
    RecordConversion(RecordInput& input, const records::Description& description,
                     const conversion::CharacterSet& characters, const AtomicOutput& output,
                     RunReport& report, Rejects& rejects,
                     conversion::Controls controls = conversion::Controls::refuse);
    // After an incomplete run, a document that readers can see already gets no end tag.
    ~RecordConversion();
    RecordConversion(const RecordConversion&) = delete;
    RecordConversion& operator=(const RecordConversion&) = delete;

    const conversion::RecordFields& fields() const { return document_->fields(); }
    // `observer` is told of each record before it is converted.
    void observe(std::function<void(const conversion::Record&)> observer) {
        observer_ = std::move(observer);
    }
    // Converts all records from the one of this number on, closes the document and sums up. Throws
    // Failure for a record that cannot become part of a well-formed document, unless it can be
    // rejected, and when something could not be stored.
    void run(std::uint64_t first = 1);
    // The same for one record that was read, and for the end of the document.
    void take(const conversion::Record& record);
    void close();

  private:
    void convert(const conversion::Record& record);
    void reject(const conversion::Record& record, conversion::Problem problem);
    using LostControls = conversion::OutputDocument::Outcome::LostControls;
    // `offset`: as the description has it.
    conversion::Problem problem_at(const conversion::Record& record, std::int32_t item,
                                   std::int32_t offset) const;
    void report_controls(const conversion::Record& record, const LostControls& lost);
    void report_number(const conversion::Record& record, const conversion::Field& field,
                       Finding finding, const std::string& what);
    void report_layout(const conversion::Record& record);
    void report_uncounted(const conversion::Record& record, conversion::Problem problem);

    RecordInput& input_;
    const records::Description& description_;
    const AtomicOutput& output_;
    RunReport& report_;
    Rejects& rejects_;
    std::unique_ptr<conversion::OutputDocument> document_;
    std::function<void(const conversion::Record&)> observer_;
};

}  // namespace command
