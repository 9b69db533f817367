#include "tools/sxml/jobs/from_xml_parts.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "conversion/documents/document_parts.h"
#include "conversion/documents/record_locator.h"
#include "host/trace.h"
#include "platform/files.h"
#include "tools/sxml/failure.h"
#include "tools/sxml/jobs/jobs_option.h"
#include "tools/sxml/jobs/part_result.h"
#include "tools/sxml/jobs/parts_run.h"
#include "tools/sxml/reports/progress.h"

namespace command {

namespace {

using conversion::ByteRange;
using conversion::ByteSink;
using conversion::DocumentParts;
using conversion::InputDocument;
using conversion::RecordFormat;

constexpr std::uint64_t WORTHWHILE = std::uint64_t{16} << 20;
constexpr std::uint64_t LARGEST_PART = std::uint64_t{8} << 20;

// Size of a regular file.
std::optional<std::uint64_t> size_of(const std::string& file) {
    const auto state = platform::state_of(file);
    const bool is_regular = state && state->kind == platform::FileKind::regular;
    return is_regular ? std::optional(state->size) : std::nullopt;
}

// What parts have done, and what is left for one process.
struct DocumentSoFar {
    std::optional<InputDocument::Part> rest;  // nothing: all of the document
    std::uint64_t position = 0;               // in the output
    bool is_whole = false;
    DocumentTotals totals;
};

// Records depend on the ones before, or parts of the document are wanted.
bool is_sequential(const DocumentRun& run) {
    constexpr std::uint64_t ALL = std::numeric_limits<std::uint64_t>::max();
    return run.output.is_direct() || host_trace_on != 0 ||
           run.format.kind == RecordFormat::Kind::blocks ||
           run.document.fill == conversion::BlankFill::keep ||
           run.description.asks_for_position() || run.wanted.first != 1 || run.wanted.count != ALL;
}

host::InputPart input_part(const DocumentParts& parts, ByteRange range) {
    const bool is_last = range.end == parts.size();
    return {parts.beginning(), range.begin, range.end, is_last ? "" : parts.end_tag()};
}

// In a worker.
PartResult convert_part(const DocumentRun& run, const DocumentParts& parts, std::uint64_t part,
                        const platform::NamelessFile& file) {
    PartResult result;
    const ByteRange range = value_of(parts.bytes(part));
    ReportOptions silence = run.report_options;
    silence.is_silent = true;
    RunReport report(silence, run.document.shown_name);
    RejectList rejects(run.rejects.is_wanted());
    if (range.begin < range.end) {
        InputDocument::Options options = run.document;
        options.part = {input_part(parts, range), 0, true};
        ByteSink sink = value_of(ByteSink::open(file.name()));
        const auto store = conversion::write_records(run.format, sink);
        const auto document =
            value_of(InputDocument::open(run.description, run.characters, options));
        DocumentConversion conversion(*document, {}, *store, run.wanted, report, rejects);
        conversion.convert_all();
        const std::optional<std::uint64_t> size = file.size();
        if (!size) return result;
        result.end = *size;
        result.totals = conversion.totals();
    }
    result.input_read = range.end;
    result.take(report, rejects);
    result.is_done = true;
    return result;
}

conversion::RecordLocator locator_of(const InputDocument::Options& document) {
    if (document.original.empty()) return conversion::RecordLocator(document.file);
    return conversion::RecordLocator(document.original, document.attributes);
}

// Numbers the records of parts, and finds their lines.
class PartsOfDocument {
  public:
    explicit PartsOfDocument(const DocumentRun& run, std::uint64_t size)
        : run_(run), locator_(locator_of(run.document)), progress_(size) {}

    bool accept(PartResult& part) {
        if (!run_.rejects.takes(part.rejects.size())) return false;
        add_findings(
            part, run_.report, [this](conversion::Problem& problem) { complete(problem.place); },
            [this](const Rejected& rejected) {
                const std::string record = locator_.text(rejected.problem.place.record);
                run_.rejects.add(record, locator_.encoding(), rejected.problem);
            });
        records_ += part.records;
        totals_.add(part.totals);
        progress_.update(records_, part.input_read);
        return true;
    }
    std::uint64_t records() const { return records_; }
    const DocumentTotals& totals() const { return totals_; }

  private:
    void complete(conversion::Place& place) {
        place.record += records_;
        const auto position = locator_.position(place.record, std::exchange(place.element, 0));
        if (!position) return;
        place.line = position->line;
        place.column = position->column;
    }

    const DocumentRun& run_;
    conversion::RecordLocator locator_;
    Progress progress_;
    std::uint64_t records_ = 0;
    DocumentTotals totals_;
};

DocumentSoFar convert_divided(const DocumentRun& run, unsigned jobs, const DocumentParts& parts) {
    PartsOfDocument all(run, parts.size());
    const auto workers = static_cast<unsigned>(std::min<std::uint64_t>(jobs, parts.count()));
    const PartsDone done =
        convert_parts({workers, parts.count(), run.output, 0,
                       [&](std::uint64_t part, const platform::NamelessFile& file) {
                           return convert_part(run, parts, part, file);
                       },
                       [&](PartResult& part) { return all.accept(part); }});
    DocumentSoFar so_far{{}, done.position, done.is_whole, all.totals()};
    if (done.is_whole || done.parts == 0) return so_far;
    // A part without records begins within one of a part before it, which is done.
    for (std::uint64_t part = done.parts; part < parts.count(); ++part) {
        const ByteRange range = value_of(parts.bytes(part));
        if (range.begin == range.end) continue;
        so_far.rest = {input_part(parts, {range.begin, parts.size()}), all.records(), false};
        return so_far;
    }
    so_far.is_whole = true;
    return so_far;
}

DocumentSoFar convert_what_can_be_divided(const DocumentRun& run) {
    const std::optional<std::uint64_t> size = size_of(run.document.file);
    const unsigned jobs = jobs_for(run.jobs, size.value_or(0), WORTHWHILE);
    if (jobs == 1 || !size || is_sequential(run)) return {};
    const auto parts = value_of(DocumentParts::of(run.document.file, run.document.shown_name,
                                                  part_size(*size, jobs, LARGEST_PART)));
    return parts ? convert_divided(run, jobs, *parts) : DocumentSoFar();
}

}  // namespace

void convert_document(const DocumentRun& run) {
    ByteSink sink = run.output.open();
    DocumentSoFar so_far = convert_what_can_be_divided(run);
    if (so_far.is_whole) {
        const auto fields = value_of(conversion::RecordFields::of(run.description.xfd()));
        return finish_document(so_far.totals, fields, run.document.shown_name, run.report,
                               run.rejects);
    }
    if (so_far.position > 0) check(sink.move_to(so_far.position));
    const auto store = conversion::write_records(run.format, sink);
    InputDocument::Options options = run.document;
    options.part = std::move(so_far.rest);
    const auto document = value_of(InputDocument::open(run.description, run.characters, options));
    DocumentConversion conversion(*document, size_of(run.document.file), *store, run.wanted,
                                  run.report, run.rejects);
    conversion.begin_after(std::move(so_far.totals));
    conversion.run();
}

}  // namespace command
