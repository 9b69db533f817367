#include "tools/sxml/convert/record_conversion.h"

#include <utility>

#include "conversion/texts/counted.h"
#include "records/hexadecimal.h"
#include "tools/sxml/document.h"
#include "tools/sxml/failure.h"
#include "tools/sxml/reports/field_value.h"
#include "tools/sxml/reports/progress.h"

namespace command {

namespace {

// Records between looks at the clock and at the output's state.
constexpr std::uint64_t RECORDS_BETWEEN_LOOKS = 1024;

constexpr const char* NUL_HINT =
    "its NUL bytes keep a condition from holding whose literal is padded with spaces; compare with "
    "LOW-VALUES as well, or fill the field with spaces";

}  // namespace

RecordConversion::RecordConversion(RecordInput& input, const records::Description& description,
                                   const conversion::CharacterSet& characters,
                                   const AtomicOutput& output, RunReport& report, Rejects& rejects,
                                   conversion::Controls controls)
    : input_(input),
      description_(description),
      output_(output),
      report_(report),
      rejects_(rejects),
      document_(value_of(conversion::OutputDocument::open(description, characters,
                                                          {output.write_name(),
                                                           output.shown_name(),
                                                           {},
                                                           report.is_strict(),
                                                           input.format().has_lengths(),
                                                           controls}))) {}

RecordConversion::~RecordConversion() {
    if (document_ && output_.is_direct()) document_->abandon();
}

void RecordConversion::run(std::uint64_t first) {
    Progress progress(input_.size());
    while (const std::optional<conversion::Record> record = input_.next()) {
        if (record->number < first) continue;
        take(*record);
        if (record->number % RECORDS_BETWEEN_LOOKS == 0) {
            progress.update(record->number, record->file_offset);
        }
    }
    close();
    rejects_.finish_records();
    report_.sum_up();
}

void RecordConversion::take(const conversion::Record& record) {
    report_.count_record();
    if (observer_) observer_(record);
    convert(record);
    if (record.number % RECORDS_BETWEEN_LOOKS == 0) check_written({&output_});
}

void RecordConversion::close() {
    check_written({&output_});
    document_.reset();
    check_written({&output_});
}

void RecordConversion::convert(const conversion::Record& record) {
    conversion::Done problem = document_->write(
        record.data, static_cast<std::int32_t>(record.length), std::nullopt, record.position());
    if (problem) return reject(record, *std::move(problem));
    const conversion::OutputDocument::Outcome& outcome = document_->outcome();
    for (const conversion::Field* field : outcome.bad_numbers) {
        report_number(record, *field, Finding::bad_number, "not a valid number");
    }
    for (const conversion::Field* field : outcome.inexact_numbers) {
        report_number(record, *field, Finding::inexact_number, conversion::INEXACT_NUMBER);
    }
    for (const LostControls& lost : outcome.lost_controls) report_controls(record, lost);
    if (!outcome.is_of_a_layout) report_layout(record);
    if (outcome.uncounted) report_uncounted(record, *outcome.uncounted);
}

void RecordConversion::reject(const conversion::Record& record, conversion::Problem problem) {
    conversion::Place& place = problem.place;
    place.file = input_.name();
    place.record = record.number;
    if (place.in_record) place.byte_offset = record.file_offset + *place.in_record;
    if (problem.remedy == conversion::NAME_THE_CHARACTER_SET) {
        problem.remedy =
            "if the text is in another character set, name it: --encoding iso-8859-1, "
            "--encoding cp037";
    }
    if (problem.cause != conversion::Cause::record || !rejects_.is_wanted()) fail(problem);
    if (report_.count(Finding::rejected)) report_.name(Finding::rejected, problem);
    rejects_.add({record.data, record.length}, input_.format());
}

conversion::Problem RecordConversion::problem_at(const conversion::Record& record,
                                                 std::int32_t item, std::int32_t offset) const {
    conversion::Problem problem{conversion::Cause::record, {}, {}, {}};
    problem.place.file = input_.name();
    problem.place.record = record.number;
    problem.place.field = fields().name(item);
    problem.place.path = fields().path(item);
    problem.place.byte_offset =
        record.file_offset + static_cast<std::uint64_t>(document_->offset_in_record(offset));
    return problem;
}

void RecordConversion::report_controls(const conversion::Record& record, const LostControls& lost) {
    if (!report_.count(Finding::lost_control)) return;
    conversion::Problem problem = problem_at(record, lost.item, lost.offset);
    problem.what = conversion::counted(lost.count, "control character") + " " +
                   (lost.count == 1 ? "was" : "were") + " dropped or replaced, as --controls says";
    report_.name(Finding::lost_control, problem);
}

void RecordConversion::report_number(const conversion::Record& record,
                                     const conversion::Field& field, Finding finding,
                                     const std::string& what) {
    if (!report_.count(finding)) return;
    conversion::Problem problem = problem_at(record, field.item, field.offset);
    const std::int32_t offset = document_->offset_in_record(field.offset);
    problem.evidence.assign(reinterpret_cast<const char*>(record.data) + offset,
                            static_cast<std::size_t>(field.length));
    problem.what = what + ": X'" + records::hexadecimal(problem.evidence) + "'";
    report_.name(finding, problem);
}

void RecordConversion::report_uncounted(const conversion::Record& record,
                                        conversion::Problem problem) {
    if (!report_.count(Finding::uncounted)) return;
    problem.place.file = input_.name();
    problem.place.record = record.number;
    problem.place.byte_offset = record.file_offset + problem.place.in_record.value_or(0);
    if (!problem.evidence.empty()) {
        problem.what += ": X'" + records::hexadecimal(problem.evidence) + "'";
    }
    report_.name(Finding::uncounted, problem);
}

void RecordConversion::report_layout(const conversion::Record& record) {
    if (!report_.count(Finding::no_layout)) return;
    conversion::Problem problem{conversion::Cause::record, {}, {}, {}};
    problem.place.file = input_.name();
    problem.place.record = record.number;
    problem.place.byte_offset = record.file_offset;
    problem.what = "none of the record layouts' conditions holds";
    if (document_->outcome().would_fit_with_spaces) problem.remedy = NUL_HINT;
    report_.name(Finding::no_layout, problem);
}

}  // namespace command
