// The loop from the records of a document to a record file.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "conversion/formats/record_format.h"
#include "conversion/session/input_document.h"
#include "tools/sxml/reports/progress.h"
#include "tools/sxml/reports/reject_file.h"
#include "tools/sxml/reports/run_report.h"

namespace command {

struct RecordsWanted {
    bool has_lengths;          // they are as long as what the document has for them
    std::uint32_t min_length;  // but not shorter, in bytes
    std::uint64_t first;       // number of the first in the document, from 1
    std::uint64_t count;
};

// The results for a document after its records have been read.
struct DocumentTotals {
    bool has_filled = false;                                      // any field
    std::vector<conversion::InputDocument::FieldUse> field_uses;  // by item

    // Takes over what is known of further records.
    void add(const DocumentTotals& more);
};

// Ends the rejects and the report when all records have been read: says which fields some records
// have no element for, and sums up. `name`: of the document. Throws Failure when no field was
// filled at all.
void finish_document(const DocumentTotals& totals, const conversion::RecordFields& fields,
                     const std::string& name, RunReport& report, Rejects& rejects);

// Reads the records of a document one by one, stores them, and reports differences from the
// document. Everything given must outlive this.
class DocumentConversion {
  public:
    // `size`: of the document, in bytes, when known.
    DocumentConversion(conversion::InputDocument& document, std::optional<std::uint64_t> size,
                       conversion::RecordWriter& store, const RecordsWanted& wanted,
                       RunReport& report, Rejects& rejects);

    // `observer` is told of each record when it has been read.
    void observe(std::function<void(const conversion::InputDocument&)> observer) {
        observer_ = std::move(observer);
    }
    // Records that came before those of the document, which is a part.
    void begin_after(DocumentTotals totals) { totals_ = std::move(totals); }
    // Converts all records, showing progress; finishes and closes the store. Throws Failure as
    // convert_all() and finish_document().
    void run();
    // Converts all records and closes the store. Throws Failure where the document ends too early
    // or is not well-formed, for a record that cannot be stored, unless it can be rejected, and
    // when there is no room.
    void convert_all();
    // Of the records so far.
    DocumentTotals totals() const;

  private:
    void read_all(Progress* progress);
    void read_with_progress();
    void convert();
    std::span<const std::uint8_t> record();
    std::optional<conversion::Problem> problem_of_record();
    std::optional<conversion::Problem> problem_of_counter();
    std::optional<conversion::Problem> problem_of(const conversion::FieldTrouble& trouble);
    std::optional<conversion::Problem> problem_of(const conversion::UnusedData& data);
    std::optional<conversion::Problem> found(Finding finding, conversion::Problem problem);
    void reject(const conversion::Problem& problem);
    conversion::Problem problem_at(std::int32_t item, std::string what);
    conversion::Problem problem_at(const conversion::FieldTrouble& trouble, std::string what);

    conversion::InputDocument& document_;
    std::optional<std::uint64_t> size_;
    conversion::RecordWriter& store_;
    RecordsWanted wanted_;
    RunReport& report_;
    Rejects& rejects_;
    std::function<void(const conversion::InputDocument&)> observer_;
    std::vector<std::uint8_t> padded_;
    DocumentTotals totals_;  // except for the fields of the document's own records
};

}  // namespace command
