// sxml split: makes several documents of one, each of them whole.

#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

#include "conversion/documents/document_frame.h"
#include "conversion/documents/document_source.h"
#include "platform/paths.h"
#include "tools/sxml/commands.h"
#include "tools/sxml/failure.h"
#include "tools/sxml/options/options.h"
#include "tools/sxml/options/run_files.h"
#include "tools/sxml/output/atomic_output.h"

namespace command {

namespace {

constexpr std::uint64_t MOST_PARTS = 100'000;

struct SplitOptions {
    std::string in;
    std::uint64_t parts = 0;    // 0: by records
    std::uint64_t records = 0;  // in each part
    std::string out;            // names of parts begin with it
};

// Where the parts of a document end, except the last one.
class Cuts {
  public:
    explicit Cuts(const SplitOptions& options) : options_(options) {}

    // A record ends at `end`; there may be a cut.
    void after_record(const conversion::DocumentFrame& frame, std::uint64_t end) {
        if (options_.records > 0) {
            if (pending_) ends_.push_back(*pending_);
            pending_.reset();
            if (frame.children % options_.records == 0) pending_ = end;
            if (ends_.size() >= MOST_PARTS) too_many();
            return;
        }
        // One record may be larger than a part: then some parts have none.
        while (ends_.size() + 1 < options_.parts && end >= wanted_end(frame)) ends_.push_back(end);
    }
    // All of them, when the last record ends at `end`.
    std::vector<std::uint64_t> ends(std::uint64_t end) && {
        ends_.resize(options_.records > 0 ? ends_.size() : options_.parts - 1, end);
        ends_.push_back(end);
        return std::move(ends_);
    }

  private:
    // Where the part at hand should end: parts have the same number of bytes.
    std::uint64_t wanted_end(const conversion::DocumentFrame& frame) const {
        const std::uint64_t bytes = frame.size - frame.tag.end;
        const std::uint64_t part = ends_.size() + 1;
        // In two steps, since the product may be too large.
        return frame.tag.end + bytes / options_.parts * part +
               bytes % options_.parts * part / options_.parts;
    }
    [[noreturn]] static void too_many() {
        fail_usage("there would be more than 100,000 parts; give a larger number with --records");
    }

    const SplitOptions& options_;
    std::vector<std::uint64_t> ends_;
    std::optional<std::uint64_t> pending_;  // a cut, if a further record comes
};

// NAME-1.xml, NAME-2.xml ..., all with as many digits, so that they sort.
std::vector<std::string> part_names(const SplitOptions& options, std::size_t count) {
    const std::size_t digits = std::to_string(count).size();
    std::vector<std::string> names;
    for (std::size_t part = 1; part <= count; ++part) {
        const std::string number = std::to_string(part);
        names.push_back(options.out + "-" + std::string(digits - number.size(), '0') + number +
                        ".xml");
    }
    return names;
}

// Parts lie beside the document unless something else is said.
std::string stem_of(const SplitOptions& options) {
    if (!options.out.empty()) return options.out;
    if (options.in == "-" || conversion::is_url(options.in)) {
        fail_usage("split: name the parts with --output: the document has no file name of its own");
    }
    std::filesystem::path path = platform::path_of(options.in);
    if (path.extension() == ".xml") path.replace_extension();
    return platform::name_of(path);
}

void write_part(const std::string& file, const conversion::DocumentFrame& frame,
                conversion::ByteRange records, const AtomicOutput& output) {
    conversion::ByteSink sink = output.open();
    check(conversion::copy_bytes(file, {0, frame.tag.end}, sink));
    check(conversion::copy_bytes(file, records, sink));
    check(conversion::copy_bytes(file, {frame.children_end, frame.size}, sink));
    check(sink.close());
}

void split(SplitOptions options) {
    if ((options.parts == 0) == (options.records == 0)) {
        fail_usage("split: say how with --parts or --records, one of them");
    }
    options.out = stem_of(options);
    RunFiles files;
    const auto input = value_of(conversion::DocumentSource::open(options.in));
    files.reads_document(options.in, input);
    Cuts cuts(options);
    const conversion::DocumentFrame frame = value_of(
        conversion::frame_of(input.file(), input.name(),
                             [&cuts](const conversion::DocumentFrame& so_far, std::uint64_t end) {
                                 cuts.after_record(so_far, end);
                             }));
    const std::vector<std::uint64_t> ends = std::move(cuts).ends(frame.children_end);
    const std::vector<std::string> names = part_names(options, ends.size());
    for (const std::string& name : names) files.writes(name);
    files.check();
    std::vector<std::unique_ptr<AtomicOutput>> outputs;
    std::uint64_t begin = frame.tag.end;
    for (std::size_t part = 0; part < ends.size(); ++part) {
        outputs.push_back(std::make_unique<AtomicOutput>(names[part]));
        write_part(input.file(), frame, {begin, ends[part]}, *outputs.back());
        begin = ends[part];
    }
    for (const auto& output : outputs) output->prepare();
    std::string list;
    for (const std::string& name : names) list += name + "\n";
    AtomicOutput told("-");
    conversion::ByteSink sink = told.open();
    // From here on nothing takes memory: all parts take their names, or none.
    for (const auto& output : outputs) output->commit();
    check(sink.write(list.data(), list.size()));
    check(sink.close());
    told.commit();
}

}  // namespace

void add_split_command(Command application) {
    const Command command = application.add_subcommand(
        "split", "make several whole documents of one, and print their names");
    auto options = std::make_shared<SplitOptions>();
    add_document_argument(command, "IN", options->in);
    command.add_number("--parts", options->parts, {.smallest = 1, .largest = MOST_PARTS},
                       "make N documents of about the same size; some may have no records");
    command.add_number("--records", options->records, {.smallest = 1},
                       "put N records into each document");
    command
        .add_option("-o,--output", options->out,
                    "the parts are NAME-1.xml, NAME-2.xml ...; default: IN without .xml")
        .value("NAME");
    command.footer(
        "Example:\n  sxml split orders.xml --parts 4\n"
        "  sxml split orders.xml --records 100000 --output /tmp/orders");
    command.run([options] { split(*options); });
}

}  // namespace command
