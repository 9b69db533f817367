#include "tools/sxml/convert/document_conversion.h"

#include <algorithm>
#include <utility>

#include "conversion/texts/counted.h"
#include "conversion/texts/utf8.h"
#include "tools/sxml/failure.h"
#include "tools/sxml/options/record_input.h"

namespace command {

namespace {

using conversion::FieldFate;
using FieldUse = conversion::InputDocument::FieldUse;

constexpr std::uint64_t RECORDS_BETWEEN_LOOKS = 1024;

// A text for a message: in quotation marks, cut when it is long.
std::string quoted(const std::string& text) {
    constexpr std::size_t MOST_SHOWN = 40;
    const std::string shown = text.substr(0, conversion::whole_characters(text, MOST_SHOWN));
    return "'" + shown + (shown.size() < text.size() ? "...'" : "'");
}

const char* hint_text(conversion::UnusedData::Hint hint) {
    using Hint = conversion::UnusedData::Hint;
    switch (hint) {
        case Hint::spelling:
            return "a field's name differs in case, hyphens or underscores only; `*> sxml: name "
                   "...` in the "
                   "copybook gives it this name";
        case Hint::prefix:
            return "without its prefix it would be a field's name; `*> sxml: name ...` in the "
                   "copybook gives a field this name";
        case Hint::attribute:
            return "fields take the texts of elements; `--attributes` reads attributes as elements "
                   "called ELEMENT_ATTRIBUTE";
        case Hint::level:
            return "the records seem to be one level deeper in the document; "
                   "`--record DOCUMENT-ELEMENT/ELEMENT/RECORD` takes the elements at such a path";
        default:
            return "";
    }
}

}  // namespace

DocumentConversion::DocumentConversion(conversion::InputDocument& document,
                                       std::optional<std::uint64_t> size,
                                       conversion::RecordWriter& store, const RecordsWanted& wanted,
                                       RunReport& report, Rejects& rejects)
    : document_(document),
      size_(size),
      store_(store),
      wanted_(wanted),
      report_(report),
      rejects_(rejects) {}

void DocumentConversion::read_all(Progress* progress) {
    while (value_of(document_.read())) {
        const std::uint64_t number = document_.count();
        if (number >= wanted_.first && number - wanted_.first < wanted_.count) convert();
        if (progress != nullptr && document_.count() % RECORDS_BETWEEN_LOOKS == 0) {
            progress->update(document_.count(), document_.parsed_bytes());
        }
    }
}

// The progress line is removed when this returns, before the final messages.
void DocumentConversion::read_with_progress() {
    Progress progress(size_);
    read_all(&progress);
}

void DocumentConversion::convert_all() {
    read_all(nullptr);
    check(store_.close());
}

void DocumentConversion::run() {
    read_with_progress();
    if (document_.count() < wanted_.first && wanted_.first > 1) {
        rejects_.finish_document();
        report_.sum_up();
        fail_for_too_few(document_.shown_name(), document_.count());
    }
    finish_document(totals(), document_.fields(), document_.shown_name(), report_, rejects_);
    check(store_.close());
}

DocumentTotals DocumentConversion::totals() const {
    DocumentTotals all = totals_;
    all.add({false, document_.field_uses()});
    return all;
}

void DocumentConversion::convert() {
    report_.count_record();
    if (observer_) observer_(document_);
    if (document_.filled_length() > 0) totals_.has_filled = true;
    if (const auto problem = problem_of_record()) return reject(*problem);
    conversion::Done problem = store_.add(record());
    if (!problem) return;
    if (problem->cause != conversion::Cause::record) fail(*problem);
    problem->place = document_.place_of(1);
    reject(*problem);
}

std::span<const std::uint8_t> DocumentConversion::record() {
    std::span<const std::uint8_t> whole = document_.record();
    const std::size_t least = wanted_.has_lengths ? wanted_.min_length : document_.record_length();
    if (whole.size() < least) {
        padded_.assign(whole.begin(), whole.end());
        padded_.resize(least, document_.characters().space());
        whole = padded_;
    }
    if (!wanted_.has_lengths) return whole;
    const std::size_t length = std::max<std::size_t>(document_.used_length(), wanted_.min_length);
    return whole.first(std::min(length, whole.size()));
}

// Why the record cannot be converted, if it cannot; what it loses is reported.
std::optional<conversion::Problem> DocumentConversion::problem_of_record() {
    if (document_.problem()) {
        conversion::Problem problem = *document_.problem();
        problem.place.file = document_.shown_name();
        problem.place.record = document_.count();
        return problem;
    }
    if (auto problem = problem_of_counter()) return problem;
    for (const conversion::FieldTrouble& trouble : document_.troubles()) {
        if (auto problem = problem_of(trouble)) return problem;
    }
    for (const conversion::UnusedData& data : document_.unused_data()) {
        if (auto problem = problem_of(data)) return problem;
    }
    if (document_.is_of_a_layout() || !report_.count(Finding::no_layout)) return std::nullopt;
    conversion::Problem problem = problem_at(-1, "none of the record layouts' conditions holds");
    return found(Finding::no_layout, std::move(problem));
}

// A record that ends where its counter says would lose what is not counted; one of a fixed length
// holds it.
std::optional<conversion::Problem> DocumentConversion::problem_of_counter() {
    if (!document_.uncounted()) return std::nullopt;
    conversion::Problem problem = *document_.uncounted();
    const conversion::Place place =
        wanted_.has_lengths ? conversion::Place{} : document_.place_of(1);
    problem.place.file = document_.shown_name();
    problem.place.record = document_.count();
    problem.place.line = place.line;
    problem.place.column = place.column;
    if (wanted_.has_lengths) return problem;
    if (!report_.count(Finding::uncounted)) return std::nullopt;
    return found(Finding::uncounted, std::move(problem));
}

// With the line and column of the record.
conversion::Problem DocumentConversion::problem_at(std::int32_t item, std::string what) {
    conversion::Problem problem{
        conversion::Cause::record, document_.place_of(1), std::move(what), {}};
    if (item < 0) return problem;
    problem.place.field = document_.fields().name(item);
    problem.place.path = document_.fields().path(item);
    return problem;
}

conversion::Problem DocumentConversion::problem_at(const conversion::FieldTrouble& trouble,
                                                   std::string what) {
    conversion::Problem problem = problem_at(trouble.item, std::move(what));
    problem.evidence = trouble.text;
    return problem;
}

// A finding that was counted: named, or why the record is not converted.
std::optional<conversion::Problem> DocumentConversion::found(Finding finding,
                                                             conversion::Problem problem) {
    if (report_.is_strict()) return problem;
    report_.name(finding, problem);
    return std::nullopt;
}

std::optional<conversion::Problem> DocumentConversion::problem_of(
    const conversion::FieldTrouble& trouble) {
    switch (trouble.fate) {
        case FieldFate::lost_character:
            return problem_at(trouble, "its character " +
                                           conversion::character_name(trouble.character) +
                                           " is not in " + document_.characters().name());
        case FieldFate::no_number:
            if (!report_.count(Finding::lost_number)) return std::nullopt;
            return found(
                Finding::lost_number,
                problem_at(trouble, "not a number that fits the field: " + quoted(trouble.text)));
        case FieldFate::no_digits:
            if (!report_.count(Finding::lost_number)) return std::nullopt;
            return found(Finding::lost_number,
                         problem_at(trouble, "not hexadecimal digits of " +
                                                 conversion::counted(trouble.size, "byte") + ": " +
                                                 quoted(trouble.text)));
        case FieldFate::cut_number:
            if (!report_.count(Finding::lost_number)) return std::nullopt;
            return found(Finding::lost_number,
                         problem_at(trouble,
                                    "more decimals or low-order digits than the field "
                                    "holds, which were cut: " +
                                        quoted(trouble.text)));
        default:
            if (!report_.count(Finding::cut_text)) return std::nullopt;
            return found(Finding::cut_text,
                         problem_at(trouble, "a text of " + std::to_string(trouble.whole) +
                                                 " bytes was cut to fit into " +
                                                 std::to_string(trouble.size) + ": " +
                                                 quoted(trouble.text)));
    }
}

std::optional<conversion::Problem> DocumentConversion::problem_of(
    const conversion::UnusedData& data) {
    report_.count_unused(path_text(data), hint_text(data.hint));
    if (!report_.count(Finding::unused_data)) return std::nullopt;
    conversion::Problem problem{
        conversion::Cause::record, document_.place_of(data.number), description_of(data), {}};
    return found(Finding::unused_data, std::move(problem));
}

void DocumentConversion::reject(const conversion::Problem& problem) {
    if (!rejects_.is_wanted()) fail(problem);
    if (report_.count(Finding::rejected)) report_.name(Finding::rejected, problem);
    rejects_.add(document_, problem);
}

void DocumentTotals::add(const DocumentTotals& more) {
    has_filled = has_filled || more.has_filled;
    field_uses.resize(std::max(field_uses.size(), more.field_uses.size()));
    for (std::size_t item = 0; item < more.field_uses.size(); ++item) {
        FieldUse& use = field_uses[item];
        use.has_had_data = use.has_had_data || more.field_uses[item].has_had_data;
        use.records_without += more.field_uses[item].records_without;
    }
}

void finish_document(const DocumentTotals& totals, const conversion::RecordFields& fields,
                     const std::string& name, RunReport& report, Rejects& rejects) {
    rejects.finish_document();
    for (std::size_t item = 0; item < totals.field_uses.size(); ++item) {
        const FieldUse& use = totals.field_uses[item];
        if (use.records_without == 0 || !use.has_had_data) continue;
        report.note_missing(fields.name(static_cast<std::int32_t>(item)), use.records_without);
    }
    report.sum_up();
    if (totals.has_filled || report.counted(Finding::unused_data) == 0) return;
    fail(name + ": no field of any record was filled; does the layout describe this document?");
}

}  // namespace command
