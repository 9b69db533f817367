#include "tools/sxml/jobs/to_xml_parts.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <new>

#include "conversion/documents/document_frame.h"
#include "conversion/problem.h"
#include "conversion/session/module.h"
#include "conversion/session/output_document.h"
#include "host/runtime/streams.h"
#include "host/trace.h"
#include "platform/descriptors.h"
#include "platform/shared_files.h"
#include "tools/sxml/convert/record_conversion.h"
#include "tools/sxml/failure.h"
#include "tools/sxml/jobs/jobs_option.h"
#include "tools/sxml/jobs/part_result.h"
#include "tools/sxml/jobs/parts_run.h"
#include "tools/sxml/reports/field_value.h"
#include "tools/sxml/reports/progress.h"

namespace command {

namespace {

using platform::NamelessFile;

constexpr std::uint64_t WORTHWHILE = std::uint64_t{8} << 20;
constexpr std::uint64_t LARGEST_PART = std::uint64_t{2} << 20;

// What stands around the records of the document.
struct Surroundings {
    std::string beginning;
    std::string end_tag;
};

// The process that converts everything itself finds the problem again, unless it was memory that
// was missing once.
std::nullopt_t left_to_one_process(const conversion::Problem& problem) {
    if (problem.cause == conversion::Cause::no_memory) throw std::bad_alloc();
    return std::nullopt;
}

// Makes a document without records. Nothing when it does not show what stands around records.
std::optional<Surroundings> surroundings_of(const RecordsRun& run) {
    const std::optional<NamelessFile> file = NamelessFile::create();
    if (!file) return std::nullopt;
    {
        const auto document = conversion::OutputDocument::open(
            run.description, run.characters, {file->name(), run.output.shown_name(), {}});
        if (!document) return left_to_one_process(document.problem());
    }
    if (const auto failure = conversion::take_write_failure(file->name())) {
        return left_to_one_process(*failure);
    }
    const auto whole = file->end(std::numeric_limits<std::size_t>::max());
    const std::size_t end_tag = whole ? whole->rfind("</") : std::string::npos;
    if (end_tag == std::string::npos) return std::nullopt;
    return Surroundings{whole->substr(0, end_tag), whole->substr(end_tag)};
}

void write_at(const AtomicOutput& output, const std::string& text, std::uint64_t position) {
    const int descriptor = platform::open_to_write_into(output.write_name().c_str());
    if (descriptor < 0) fail_file(output.shown_name(), errno);
    const int error = platform::write_at(descriptor, text.data(), text.size(), position);
    const int close_error = platform::close_descriptor(descriptor);
    if (error != 0 || close_error != 0) {
        fail_file(output.shown_name(), error != 0 ? error : close_error);
    }
}

// A worker's way through the records.
class PartsOfRecords {
  public:
    PartsOfRecords(const RecordsRun& run, const Surroundings& around, std::uint64_t records)
        : run_(run), around_(around), records_(records), options_(run.options) {
        options_.format = run.input.format().name;
        options_.lines = false;
    }

    // The number of a part's first record.
    std::uint64_t first_of(std::uint64_t part) const { return options_.first + part * records_; }

    PartResult convert(std::uint64_t part, const NamelessFile& file) {
        PartResult result;
        if (!input_) open_input();
        ReportOptions silence = run_.report_options;
        silence.is_silent = true;
        RunReport report(silence, run_.input.name());
        RejectList rejects(run_.rejects.is_wanted());
        const AtomicOutput output(file.name());
        RecordConversion conversion(*input_, run_.description, run_.characters, output, report,
                                    rejects, options_.controls);
        result.is_last = !convert(part, conversion);
        conversion.close();
        result.input_read = read_;
        result.take(report, rejects);
        result.is_done = find_records(file, result);
        return result;
    }

  private:
    void open_input() {
        const conversion::RecordArea area{
            static_cast<std::size_t>(run_.description.record_length()), run_.characters.space(),
            run_.description.asks_for_last()};
        input_.emplace(run_.file, options_, area);
    }

    // Skips the records of other parts. False at the end of the input.
    bool convert(std::uint64_t part, RecordConversion& conversion) {
        const std::uint64_t first = first_of(part);
        while (const std::optional<conversion::Record> record = input_->next()) {
            read_ = record->file_offset;
            if (record->number < first) continue;
            conversion.take(*record);
            if (record->number == first + records_ - 1) return true;
        }
        return false;
    }

    bool find_records(const NamelessFile& file, PartResult& result) const {
        const auto size = file.size();
        const std::size_t around = around_.beginning.size() + around_.end_tag.size();
        if (!size || *size < around || file.end(around_.end_tag.size()) != around_.end_tag) {
            return false;
        }
        result.begin = around_.beginning.size();
        result.end = *size - around_.end_tag.size();
        return true;
    }

    const RecordsRun& run_;
    const Surroundings& around_;
    std::uint64_t records_;  // in a part
    RecordFileOptions options_;
    std::optional<RecordInput> input_;
    std::uint64_t read_ = 0;  // bytes of the input
};

// What parts have done, and what is left for one process.
struct RecordsSoFar {
    Surroundings around;
    std::uint64_t first = 1;     // record of the rest
    std::uint64_t position = 0;  // in the output, 0 when nothing is there
    bool is_whole = false;
};

RecordsSoFar convert_divided(const RecordsRun& run, unsigned jobs, Surroundings around) {
    const std::uint64_t size = run.input.size().value_or(0);
    const auto length = static_cast<std::uint64_t>(run.description.record_length());
    const std::uint64_t records =
        std::max<std::uint64_t>(1, part_size(size, jobs, LARGEST_PART) / length);
    PartsOfRecords parts(run, around, records);
    Progress progress(size);
    constexpr std::uint64_t ANY_NUMBER = std::numeric_limits<std::uint64_t>::max();
    write_at(run.output, around.beginning, 0);
    const PartsDone done = convert_parts(
        {jobs, ANY_NUMBER, run.output, around.beginning.size(),
         [&](std::uint64_t part, const NamelessFile& file) { return parts.convert(part, file); },
         [&](PartResult& part) {
             if (!run.rejects.takes(part.rejects.size())) return false;
             add_findings(
                 part, run.report, [](conversion::Problem&) {},
                 [&run](const Rejected& rejected) {
                     run.rejects.add(bytes_of(rejected.record), run.input.format());
                 });
             progress.update(run.report.records(), part.input_read);
             return true;
         }});
    const std::uint64_t first = parts.first_of(done.parts);
    return {std::move(around), first, done.position, done.is_whole};
}

RecordsSoFar convert_what_can_be_divided(const RecordsRun& run) {
    const std::optional<std::uint64_t> size = run.input.size();
    const unsigned jobs = jobs_for(run.jobs, size.value_or(0), WORTHWHILE);
    const bool can_be_read_again = size && run.file != "-";
    if (jobs == 1 || !can_be_read_again || run.output.is_direct() || host_trace_on != 0) return {};
    std::optional<Surroundings> around = surroundings_of(run);
    return around ? convert_divided(run, jobs, *std::move(around)) : RecordsSoFar();
}

// The module writes what stands before the records over the last bytes of what is there; those are
// put back.
void convert_rest(const RecordsRun& run, const RecordsSoFar& so_far) {
    const std::string& file = run.output.write_name();
    const std::size_t size = so_far.around.beginning.size();
    const std::uint64_t begin = so_far.position - size;
    const std::string covered = value_of(conversion::bytes_of(file, {begin, so_far.position}));
    const host::OutputStartScope scope(file, begin);
    RecordConversion(run.input, run.description, run.characters, run.output, run.report,
                     run.rejects, run.options.controls)
        .run(so_far.first);
    write_at(run.output, covered, begin);
}

}  // namespace

void convert_records(const RecordsRun& run) {
    const RecordsSoFar so_far = convert_what_can_be_divided(run);
    if (so_far.position == 0) {
        RecordConversion(run.input, run.description, run.characters, run.output, run.report,
                         run.rejects, run.options.controls)
            .run();
    } else if (!so_far.is_whole) {
        convert_rest(run, so_far);
    } else {
        write_at(run.output, so_far.around.end_tag, so_far.position);
        run.rejects.finish_records();
        run.report.sum_up();
    }
}

}  // namespace command
