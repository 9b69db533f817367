#include "tools/sxml/reports/run_report.h"

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>

#include "conversion/documents/document_losses.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "records/hexadecimal.h"
#include "tools/sxml/command.h"
#include "tools/sxml/failure.h"
#include "tools/sxml/options/options.h"
#include "tools/sxml/output/atomic_output.h"
#include "tools/sxml/reports/field_value.h"

namespace command {

namespace {

using Json = nlohmann::ordered_json;

// How a kind of findings is called in the file for programs, and what the sum says of it.
struct Wording {
    const char* key;
    const char* thing;  // in the singular
    const char* rest;
};

constexpr std::array<Wording, FINDINGS> WORDINGS = {{
    {"bad_numbers", "numeric field", " held no valid number and came out repaired"},
    {"lost_controls", "text", " with control characters that were dropped or replaced"},
    {"lost_numbers", "text", " of numeric fields that the fields cannot hold as they stand"},
    {"cut_texts", "text", " cut to the length of the field"},
    {"records_of_no_layout", "record",
     " of no layout; only the fields that all layouts have were taken"},
    {"unused", "text or attribute list", " went into no field"},
    {"rejected", "record", " rejected"},
    {"uncounted", "record", " whose table has other entries than its counter says"},
    {"inexact_numbers", "number", " too large or too small for the text, which differs"},
}};

// Of each report.
constexpr std::string_view REPORT_BEGINNING = "{\n  \"input\": ";

Json place_of(const conversion::Problem& problem) {
    const conversion::Place& place = problem.place;
    Json json = Json::object();
    if (place.record != 0) json["record"] = place.record;
    if (!place.field.empty()) json["field"] = place.field;
    if (!place.path.empty()) json["path"] = place.path;
    if (place.byte_offset) json["byte_offset"] = *place.byte_offset;
    if (place.line != 0) json["line"] = place.line;
    if (place.column != 0) json["column"] = place.column;
    json["what"] = problem.what;
    if (!problem.evidence.empty()) json["bytes"] = records::hexadecimal(problem.evidence, " ");
    return json;
}

// Whether there is no file of this name, or an earlier report.
bool may_replace(const std::string& file) {
    const auto state = platform::state_of(file);
    if (file == "-" || !state || state->kind != platform::FileKind::regular) return true;
    std::ifstream in(platform::path_of(file), std::ios::binary);
    std::string beginning(REPORT_BEGINNING.size(), '\0');
    in.read(beginning.data(), static_cast<std::streamsize>(beginning.size()));
    return in.gcount() == 0 || beginning == REPORT_BEGINNING;
}

const char* absent_text(conversion::BlankFill fill) {
    switch (fill) {
        case conversion::BlankFill::zeros:
            return "hold NUL bytes there";
        case conversion::BlankFill::keep:
            return "keep there what the record before has";
        default:
            return "are blank there";
    }
}

// Why the run failed comes before why that could not be reported.
void write_after_failure(const RunReport& report, const Failure& failure) {
    try {
        report.write(failure.status(), failure.what());
    } catch (const Failure& unwritten) {
        if (*failure.what() != '\0') say_failure(failure.what());
        throw Failure(unwritten.what(), failure.status());
    }
}

}  // namespace

void add_report_options(Command command, ReportOptions& options) {
    const Option rejects =
        command
            .add_option(
                "--rejects", options.rejects,
                "write records that cannot be converted to this file and go on (exit status 3)")
            .value("FILE");
    command
        .add_number("--max-rejects", options.max_rejects, {},
                    "give up when more records than this cannot be converted")
        .needs(rejects);
    command.add_flag("--strict", options.is_strict, "fail where there would be a warning");
    command.add_flag("--quiet", options.is_quiet, "print no warnings, only how many there were");
    command.add_option("--report", options.report, "write counts and places to this file, as JSON")
        .value("FILE");
}

void note_outputs(const ReportOptions& options, RunFiles& files) {
    if (!options.rejects.empty()) files.writes(options.rejects);
    if (!options.report.empty()) files.writes(options.report);
}

RunReport::RunReport(const ReportOptions& options, std::string name)
    : options_(options), name_(std::move(name)) {}

void RunReport::name(Finding finding, const conversion::Problem& problem) {
    if (counted(finding) > NAMED_AT_MOST) return;
    named_.push_back({finding, problem});
    if (!options_.is_quiet && !options_.is_silent) warn(message_of(problem));
}

std::vector<conversion::Problem> RunReport::named(Finding finding) const {
    std::vector<conversion::Problem> problems;
    for (const Named& each : named_) {
        if (each.finding == finding) problems.push_back(each.problem);
    }
    return problems;
}

void RunReport::warn_of(const std::string& message) {
    if (options_.is_strict) fail(message);
    if (!options_.is_quiet && !options_.is_silent) warn(message);
    warnings_.push_back(message);
}

void RunReport::warn_of_losses(const conversion::DocumentSource& document) {
    const auto losses =
        value_of(conversion::find_document_losses(document.file(), document.name()));
    for (const conversion::DocumentLoss* loss : losses.all()) {
        for (const conversion::Problem& problem : loss->first) warn_of(message_of(problem));
        if (loss->count == loss->first.size()) continue;
        warn_of(document.name() + ": " + std::to_string(loss->count) + " " + loss->things +
                "; the first " + std::to_string(loss->first.size()) + " are named above");
    }
}

void RunReport::count_unused(const std::string& path, const std::string& hint,
                             std::uint64_t count) {
    UnusedPath& unused = unused_[path];
    unused.count += count;
    if (unused.hint.empty()) unused.hint = hint;
}

void RunReport::note_left_out(const conversion::Problem& first, std::uint64_t count) {
    count_unused("outside of the records", "", count);
    const bool is_wanted = this->count(Finding::unused_data);
    if (is_strict()) fail(first);
    if (is_wanted) name(Finding::unused_data, first);
    add(Finding::unused_data, count - 1);
}

const char* RunReport::key_of(Finding finding) {
    return WORDINGS[static_cast<std::size_t>(finding)].key;
}

std::string RunReport::sum_of(Finding finding) const {
    const Wording& wording = WORDINGS[static_cast<std::size_t>(finding)];
    const std::uint64_t count = counted(finding);
    return std::to_string(count) + " " + wording.thing + (count == 1 ? "" : "s") + wording.rest;
}

std::vector<std::string> RunReport::unused_sums() const {
    std::vector<std::string> sums;
    for (const auto& [path, unused] : unused_) {
        sums.push_back(path + ": " + std::to_string(unused.count) + " not used" +
                       (unused.hint.empty() ? "" : "; " + unused.hint));
    }
    return sums;
}

std::string RunReport::missing_note() const {
    if (missing_.empty()) return {};
    return std::string("fields without an element in some records, which ") + absent_text(fill_) +
           ": " + missing_text();
}

void RunReport::sum_up() const {
    if (options_.is_silent) return;
    if (options_.is_quiet && !warnings_.empty()) {
        warn(name_ + ": " + std::to_string(warnings_.size()) +
             (warnings_.size() == 1 ? " warning" : " warnings") +
             " about the input or the layout as a whole; without --quiet they are printed");
    }
    for (std::size_t kind = 0; kind < FINDINGS; ++kind) {
        if (counts_[kind] == 0) continue;
        std::string text = name_ + ": " + sum_of(static_cast<Finding>(kind));
        if (counts_[kind] > NAMED_AT_MOST && !options_.is_quiet) {
            text += "; the first " + std::to_string(NAMED_AT_MOST) + " are named above";
        }
        warn(text);
    }
    for (const std::string& sum : unused_sums()) warn(name_ + ": " + sum);
    const std::string note = missing_note();
    if (!note.empty()) say("sxml: note: " + conversion::shown_in_line(name_ + ": " + note) + "\n");
}

void RunReport::note_missing(const std::string& field, std::uint64_t records) {
    missing_.emplace_back(field, records);
}

std::string RunReport::missing_text() const {
    constexpr std::size_t MOST_NAMED = 10;
    std::string text;
    for (std::size_t i = 0; i < std::min(missing_.size(), MOST_NAMED); ++i) {
        text += (i == 0 ? "" : ", ") + missing_[i].first + " (" +
                std::to_string(missing_[i].second) + ")";
    }
    if (missing_.size() > MOST_NAMED) {
        text += " and " + std::to_string(missing_.size() - MOST_NAMED) + " more fields";
    }
    return text;
}

void RunReport::check(const RunFiles& files) {
    target_ = Target::refused;
    files.check();
    target_ = Target::checked;
}

void RunReport::write(int status, const std::string& failure) const {
    if (options_.report.empty() || target_ == Target::refused) return;
    if (target_ == Target::unchecked && !may_replace(options_.report)) {
        fail(options_.report + ": the report is not written, since what is there is no report");
    }
    Json json = Json::object();
    json["input"] = name_;
    json["status"] = status;
    json["failure"] = failure.empty() ? Json() : Json(failure);
    add_to(json);
    // Text of the input that is not UTF-8 must not prevent the report from being written.
    const std::string text = json.dump(2, ' ', false, Json::error_handler_t::replace);
    write_output(options_.report, text + "\n");
}

void RunReport::add_to(Json& json) const {
    json["records"] = records_;
    for (std::size_t kind = 0; kind < FINDINGS; ++kind) {
        Json places = Json::array();
        for (const conversion::Problem& problem : named(static_cast<Finding>(kind))) {
            places.push_back(place_of(problem));
        }
        json[WORDINGS[kind].key] = {{"count", counts_[kind]}, {"first", std::move(places)}};
    }
    Json paths = Json::object();
    for (const auto& [path, unused] : unused_) paths[path] = unused.count;
    json["unused"]["paths"] = std::move(paths);
    Json missing = Json::object();
    for (const auto& [field, records] : missing_) missing[field] = records;
    json["missing"] = std::move(missing);
    json["warnings"] = warnings_;
}

void run_with_report(const ReportOptions& options, const std::string& name,
                     const std::function<int(RunReport&)>& run) {
    RunReport report(options, name);
    int status = 0;
    try {
        status = run(report);
    } catch (const Failure& failure) {
        write_after_failure(report, failure);
        throw;
    }
    try {
        report.write(status, "");
    } catch (const Failure& unwritten) {
        throw Failure(unwritten.what() + std::string("; all else of the run is complete"),
                      unwritten.status());
    }
    if (status != 0) throw Failure("", status);
}

}  // namespace command
