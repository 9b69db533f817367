// The findings of a run: named as they occur, summed up at the end, and written to a file for
// programs.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "conversion/documents/document_source.h"
#include "conversion/fields/blank_record.h"
#include "conversion/problem.h"
#include "tools/sxml/options/run_files.h"

namespace command {

class Command;

constexpr int EXIT_REJECTED = 3;  // done, but for records that were rejected

struct ReportOptions {
    std::string
        rejects;  // the file for records that cannot be converted; empty: the first ends the run
    std::uint64_t max_rejects = std::numeric_limits<std::uint64_t>::max();
    bool is_strict = false;   // what would be a warning fails
    bool is_quiet = false;    // no warnings, only the sums
    bool is_silent = false;   // nothing on standard error: another process reports the findings
    std::string report = {};  // the file for programs; empty: none
};

// Adds --rejects, --max-rejects, --strict, --quiet and --report. `options` must live until the
// command line has been parsed.
void add_report_options(Command command, ReportOptions& options);

// Notes the files that the options name as outputs.
void note_outputs(const ReportOptions& options, RunFiles& files);

enum class Finding : std::uint8_t {
    bad_number,     // a field without a valid number
    lost_control,   // control characters of a text were dropped or replaced, as was asked for
    lost_number,    // a text that is not a number that fits the field
    cut_text,       // a text longer than its field
    no_layout,      // a record of none of the layouts
    unused_data,    // of a document: went into no field
    rejected,       // a record that was not converted
    uncounted,      // a record with data that the counter of its table does not count
    inexact_number  // a field with a number that is too large or too small for its text
};
constexpr std::size_t FINDINGS = 9;

class RunReport {
  public:
    // `options` must outlive this. `name`: of the input, in messages.
    RunReport(const ReportOptions& options, std::string name);

    // Counts a finding. True when its details are wanted: they are named, or they fail the run or
    // the record.
    bool count(Finding finding) {
        const std::uint64_t number = ++counts_[static_cast<std::size_t>(finding)];
        return options_.is_strict || number <= NAMED_AT_MOST;
    }
    // Names a finding that was counted, unless warnings are not wanted.
    void name(Finding finding, const conversion::Problem& problem);
    bool is_strict() const { return options_.is_strict; }
    // As messages name it.
    const std::string& input_name() const { return name_; }
    // Warns of something that concerns the run as a whole; fails when the options say so.
    void warn_of(const std::string& message);
    // Warns of what reading a document does not give: external entities, characters that
    // ISO-8859-1 lacks. Throws Failure.
    void warn_of_losses(const conversion::DocumentSource& document);
    void count_record() { ++records_; }
    // Takes over what another report has counted and not named.
    void add_records(std::uint64_t count) { records_ += count; }
    void add(Finding finding, std::uint64_t count) {
        counts_[static_cast<std::size_t>(finding)] += count;
    }
    // Checks the run's files, all of which are known: the report replaces none of them. Throws
    // Failure (wrong usage).
    void check(const RunFiles& files);

    // Counts data of a document that is in no record. Names it by `first`, or fails with it when
    // the options say so.
    void note_left_out(const conversion::Problem& first, std::uint64_t count);

    // Text or attributes at this path went into no field, this many times; `hint` may be empty.
    void count_unused(const std::string& path, const std::string& hint, std::uint64_t count = 1);

    // A field had no element in so many records, and data in others. Not a warning: documents may
    // leave out what is empty.
    void note_missing(const std::string& field, std::uint64_t records);

    // What such fields hold; without it, as by BlankFill::by_type.
    void note_fill(conversion::BlankFill fill) { fill_ = fill; }

    // A line for each kind of findings, and one for each path that was not used.
    void sum_up() const;
    // Writes the file for programs, if one is wanted. `failure`: why the run failed; empty: it did
    // not. Before the files are checked, the file replaces nothing but an earlier report. Throws
    // Failure.
    void write(int status, const std::string& failure) const;

    std::uint64_t counted(Finding finding) const {
        return counts_[static_cast<std::size_t>(finding)];
    }
    // The first findings of a kind.
    std::vector<conversion::Problem> named(Finding finding) const;
    // The first findings of all kinds, as they were found.
    struct Named {
        Finding finding;
        conversion::Problem problem;
    };
    const std::vector<Named>& named() const { return named_; }
    struct UnusedPath {
        std::uint64_t count = 0;
        std::string hint;
    };
    const std::map<std::string, UnusedPath>& unused() const { return unused_; }
    // How the kind is called in add_to().
    static const char* key_of(Finding finding);
    // "3 texts cut to the length of the field"
    std::string sum_of(Finding finding) const;
    // "PATH: 3 not used; HINT" for each path.
    std::vector<std::string> unused_sums() const;
    // The fields that had no element in some records, in one line; empty: there are none.
    std::string missing_note() const;
    const std::vector<std::string>& warnings() const { return warnings_; }
    std::uint64_t records() const { return records_; }
    // What was counted and named: records, and an object for each kind of findings.
    void add_to(nlohmann::ordered_json& json) const;

  private:
    std::string missing_text() const;

    static constexpr std::uint64_t NAMED_AT_MOST = 10;

    const ReportOptions& options_;
    std::string name_;
    conversion::BlankFill fill_ = conversion::BlankFill::by_type;
    enum class Target : std::uint8_t { unchecked, checked, refused } target_ = Target::unchecked;
    std::uint64_t records_ = 0;
    std::array<std::uint64_t, FINDINGS> counts_{};
    std::vector<Named> named_;
    std::map<std::string, UnusedPath> unused_;
    std::vector<std::pair<std::string, std::uint64_t>> missing_;
    std::vector<std::string> warnings_;  // of the run as a whole
};

// Makes a run, which gives its exit status, and writes its report, also when it fails. `name`: of
// the input, in messages. Throws Failure, without a message when the run gives another status than
// 0.
void run_with_report(const ReportOptions& options, const std::string& name,
                     const std::function<int(RunReport&)>& run);

}  // namespace command
