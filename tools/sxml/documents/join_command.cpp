// sxml join: makes one document of several of the same description.

#include <algorithm>
#include <cctype>
#include <memory>
#include <vector>

#include "conversion/documents/document_frame.h"
#include "conversion/documents/document_source.h"
#include "tools/sxml/commands.h"
#include "tools/sxml/failure.h"
#include "tools/sxml/options/run_files.h"
#include "tools/sxml/output/atomic_output.h"

namespace command {

namespace {

struct JoinOptions {
    std::vector<std::string> parts;
    std::string out;
};

struct Part {
    conversion::DocumentSource source;
    conversion::DocumentFrame frame;

    std::string bytes(conversion::ByteRange range) const {
        return value_of(conversion::bytes_of(source.file(), range));
    }
};

// What comes after a document's last record, in the document element and after that.
struct Ending {
    explicit Ending(const Part& part)
        : inner(part.bytes({part.frame.children_end, part.frame.end_tag})),
          outer(part.bytes({part.frame.end_tag, part.frame.size})) {}

    std::string inner;
    std::string outer;
};

bool is_blank(const std::string& text) {
    // A NUL belongs to UTF-16.
    return text.find_first_not_of(std::string(" \t\r\n\0", 5)) == std::string::npos;
}

// Whether two documents can be joined: the encoding of their bytes and the meaning of their
// elements.
struct Likeness {
    std::string encoding;
    std::string type;
    std::string tag;
};

Likeness likeness_of(const Part& part) {
    Likeness likeness;
    likeness.encoding = part.frame.encoding.empty() ? "UTF-8" : part.frame.encoding;
    for (char& c : likeness.encoding) {
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    const std::string mark = part.bytes({0, 2});
    if (mark == "\xFF\xFE" || mark == "\xFE\xFF") likeness.encoding += mark;
    likeness.type = part.bytes(part.frame.type);
    likeness.tag = part.bytes(part.frame.tag);
    // <orders/> and <orders> are alike.
    const std::size_t end = likeness.tag.find_last_not_of(std::string("/> \t\r\n\0", 7));
    likeness.tag.resize(end + 1);
    return likeness;
}

void check_alike(const Part& first, const Likeness& wanted, const Part& part) {
    const Likeness likeness = likeness_of(part);
    const auto differ = [&](const std::string& what) {
        fail(part.source.name() + ": " + what + " is not that of " + first.source.name() +
             "; documents that are joined must be of one description");
    };
    if (likeness.encoding != wanted.encoding) differ("the encoding");
    if (likeness.type != wanted.type) differ("the document type declaration");
    if (likeness.tag != wanted.tag) differ("the start tag of the document element");
}

std::vector<Part> read_parts(const JoinOptions& options, RunFiles& files) {
    std::vector<Part> parts;
    for (const std::string& name : options.parts) {
        auto source = value_of(conversion::DocumentSource::open(name));
        files.reads_document(name, source);
        const auto frame = value_of(conversion::frame_of(source.file(), source.name()));
        parts.push_back({std::move(source), frame});
    }
    const Likeness wanted = likeness_of(parts.front());
    for (const Part& part : parts) check_alike(parts.front(), wanted, part);
    return parts;
}

// The records of a part.
void write_records(const Part& part, conversion::ByteSink& sink) {
    const conversion::ByteRange records = {part.frame.tag.end, part.frame.children_end};
    check(conversion::copy_bytes(part.source.file(), records, sink));
}

// What a part's document element holds after its records, unless that is blank or stands at the end
// of the joined document anyway.
void write_ending(const Part& part, const Ending& around, conversion::ByteSink& sink) {
    const Ending own(part);
    if (!part.frame.is_empty_tag && !is_blank(own.inner) && own.inner != around.inner) {
        check(sink.write(own.inner.data(), own.inner.size()));
    }
    if (own.outer != around.outer &&
        own.outer.find('<', part.frame.is_empty_tag ? 0 : 2) != own.outer.npos) {
        warn(part.source.name() + ": anything after the document element is left out");
    }
}

void join(const JoinOptions& options) {
    RunFiles files;
    files.writes(options.out);
    const std::vector<Part> parts = read_parts(options, files);
    files.check();
    // The text around the records comes from the first document that has both tags.
    const auto found =
        std::ranges::find_if(parts, [](const Part& part) { return !part.frame.is_empty_tag; });
    const Part& around = found == parts.end() ? parts.front() : *found;
    AtomicOutput output(options.out);
    conversion::ByteSink sink = output.open();
    check(conversion::copy_bytes(around.source.file(), {0, around.frame.tag.end}, sink));
    const Ending ending(around);
    for (const Part& part : parts) {
        write_records(part, sink);
        if (&part != &around) write_ending(part, ending, sink);
    }
    check(conversion::copy_bytes(around.source.file(),
                                 {around.frame.children_end, around.frame.size}, sink));
    check(sink.close());
    output.commit();
}

}  // namespace

void add_join_command(Command application) {
    const Command command = application.add_subcommand(
        "join", "make one document of several of the same description, in the order given");
    auto options = std::make_shared<JoinOptions>();
    command.add_option("PART", options->parts, "the documents: files or web addresses")
        .required()
        .value("...");
    command.add_option("-o,--output", options->out, "the document to write, - for standard output")
        .required()
        .value("FILE");
    command.footer("Example:\n  sxml join orders-*.xml --output orders.xml");
    command.run([options] { join(*options); });
}

}  // namespace command
