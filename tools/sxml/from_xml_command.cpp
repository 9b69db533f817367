// sxml from-xml: turns an XML document into a record file.

#include <CLI/CLI.hpp>
#include <map>
#include <memory>
#include <optional>

#include "conversion/documents/document_source.h"
#include "conversion/formats/record_format.h"
#include "platform/files.h"
#include "tools/sxml/atomic_output.h"
#include "tools/sxml/commands.h"
#include "tools/sxml/document.h"
#include "tools/sxml/document_conversion.h"
#include "tools/sxml/errors.h"
#include "tools/sxml/options/encoding_option.h"
#include "tools/sxml/options/layout_source.h"
#include "tools/sxml/options/options.h"
#include "tools/sxml/options/record_input.h"
#include "tools/sxml/options/settings.h"

namespace command {

namespace {

using conversion::BlankFill;
using conversion::CharacterSet;

struct FromXmlOptions {
    std::string xml;
    std::string records;
    std::string
        path;  // of the elements that are the records; empty: the document element's children
    LayoutOptions layout;
    RecordFileOptions output;
    std::uint32_t min_record_length = 0;
    BlankFill fill = BlankFill::by_type;
    ReportOptions report;
};

const std::map<std::string, BlankFill> BUFFER_FILLS = {
    {"spaces", BlankFill::spaces}, {"zeros", BlankFill::zeros}, {"keep", BlankFill::keep}};

// The character set of the records; nothing: the document's.
std::optional<CharacterSet> character_set(const FromXmlOptions& options,
                                          const conversion::RecordFormat& format) {
    if (options.output.encoding.empty()) return std::nullopt;
    CharacterSet characters = find_character_set(options.output.encoding, "--encoding");
    if (format.kind == conversion::RecordFormat::Kind::lines && characters.is_ebcdic()) {
        fail_usage("--line: records in " + characters.name() + " are of fixed length");
    }
    return characters;
}

// Size of a regular file.
std::optional<std::uint64_t> size_of(const std::string& file) {
    const auto state = platform::state_of(file);
    const bool is_regular = state && state->kind == platform::FileKind::regular;
    return is_regular ? std::optional(state->size) : std::nullopt;
}

// Result: the exit status.
int convert_document(const FromXmlOptions& options, const conversion::DocumentSource& source,
                     RunFiles& files, RunReport& report) {
    const auto format = format_of(options.output);
    if (!format) fail_usage("--record-format auto: a file to be written does not tell its format");
    const std::optional<CharacterSet> characters = character_set(options, *format);
    files.writes(options.records);
    note_outputs(options.report, files);
    const auto encoding =
        characters ? record_encoding(*characters) : records::RecordEncoding::ascii;
    const records::Description description = LayoutSource(options.layout).load(encoding, files);
    files.check();
    report.allow_writing();
    AtomicOutput output(options.records);
    conversion::ByteSink sink = output.open();
    const auto store = conversion::write_records(*format, sink);
    const auto document = value_of(
        conversion::InputDocument::open(description, characters ? &*characters : nullptr,
                                        {source.file(), source.name(), options.fill, true}));
    RejectFile rejects(options.report);
    const RecordsWanted wanted{format->has_lengths(), options.min_record_length,
                               options.output.first, options.output.count};
    DocumentConversion(*document, size_of(source.file()), *store, wanted, report, rejects).run();
    output.commit();
    return rejects.count() > 0 ? EXIT_REJECTED : 0;
}

void convert_from_xml(const FromXmlOptions& options) {
    RunFiles files;
    load_module();
    apply_settings(options.layout.settings);
    const auto document = value_of(conversion::DocumentSource::open(options.xml));
    files.reads_document(options.xml, document);
    const auto reduced = options.path.empty()
                             ? std::nullopt
                             : std::optional(value_of(document.with_records_at(options.path)));
    const conversion::DocumentSource& source = reduced ? *reduced : document;
    run_with_report(options.report, source.name(), [&](RunReport& report) {
        return convert_document(options, source, files, report);
    });
}

}  // namespace

void add_from_xml_command(CLI::App& application) {
    CLI::App* command =
        application.add_subcommand("from-xml", "turn an XML document into a record file");
    auto options = std::make_shared<FromXmlOptions>();
    command
        ->add_option("XML", options->xml,
                     "the document: a file, a web address, - for standard input")
        ->required()
        ->option_text(" ");
    command
        ->add_option("RECORDS", options->records, "the record file to write, - for standard output")
        ->required()
        ->option_text(" ");
    add_layout_options(*command, options->layout, LayoutArgument::option);
    add_format_options(*command, options->output, "how records are told apart");
    add_range_options(*command, options->output);
    command
        ->add_option("--min-record-length", options->min_record_length,
                     "the least length of records in formats with lengths (default: 0)")
        ->option_text("BYTES");
    command
        ->add_option("--encoding", options->output.encoding,
                     "character set of the records' text: utf-8, iso-8859-1, an EBCDIC code page "
                     "such as cp037 ... (default: as the document)")
        ->option_text("NAME");
    command
        ->add_option_function<std::string>(
            "--buffer",
            [options](const std::string& fill) { options->fill = BUFFER_FILLS.at(fill); },
            "what fields hold that the document has no data for: spaces, zeros (bytes of value 0), "
            "or keep what the record before held (default: spaces in characters, zero in numbers)")
        ->check(CLI::IsMember({"spaces", "zeros", "keep"}))
        ->option_text("spaces|zeros|keep");
    add_record_path_option(*command, options->path);
    add_report_options(*command, options->report);
    command->footer(
        "Example:\n"
        "  sxml from-xml orders.xml orders.dat --layout orders.cpy\n"
        "  sxml from-xml - - --layout orders.cpy --encoding cp037 < orders.xml > orders.ebc");
    command->callback([options] { convert_from_xml(*options); });
}

}  // namespace command
