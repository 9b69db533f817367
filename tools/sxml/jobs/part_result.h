// A worker's results for a part of a conversion.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tools/sxml/convert/document_conversion.h"
#include "tools/sxml/reports/reject_file.h"
#include "tools/sxml/reports/run_report.h"

namespace command {

struct Rejected {
    std::string record;           // of a record file: its bytes
    conversion::Problem problem;  // of a document: why, where
};

// Rejected records of a part, for the process that has the file for them.
class RejectList : public Rejects {
  public:
    explicit RejectList(bool is_wanted) : is_wanted_(is_wanted) {}

    bool is_wanted() const override { return is_wanted_; }
    void add(std::span<const std::uint8_t> record, const conversion::RecordFormat& format) override;
    void add(conversion::InputDocument& document, const conversion::Problem& problem) override;
    void finish_records() override {}
    void finish_document() override {}
    const std::vector<Rejected>& list() const { return list_; }

  private:
    bool is_wanted_;
    std::vector<Rejected> list_;
};

struct PartResult {
    // False: the part cannot be converted by itself, or at all; converting it in the order of all
    // records shows which.
    bool is_done = false;
    bool is_last = false;          // the input has ended
    std::uint64_t begin = 0;       // what the part gives the output: bytes of the worker's file
    std::uint64_t end = 0;         // the first byte after them
    std::uint64_t input_read = 0;  // bytes of the input up to the part's end
    // What was found. In parts of a document, record numbers begin with 1.
    std::uint64_t records = 0;
    std::vector<std::uint64_t> counts;  // by Finding
    std::vector<RunReport::Named> named;
    std::map<std::string, RunReport::UnusedPath> unused;
    std::vector<Rejected> rejects;
    DocumentTotals totals;

    // Takes the findings of a part out of its report.
    void take(const RunReport& report, const RejectList& list);
};

// Of a result, for the connection between processes; and back.
std::string message_of(const PartResult& result);
PartResult result_of(std::string_view message);

// Puts the findings of a part where those of the records before it are. `complete` is called for
// each problem that is named and each record that is rejected, in their order, before that, and may
// throw; `reject` stores a rejected record.
void add_findings(PartResult& part, RunReport& report,
                  const std::function<void(conversion::Problem&)>& complete,
                  const std::function<void(const Rejected&)>& reject);

}  // namespace command
