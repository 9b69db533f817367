// sxml check: converts a file without writing anything, and reports its contents and what would be
// lost.

#include <cctype>
#include <memory>
#include <optional>

#include "conversion/documents/document_source.h"
#include "platform/files.h"
#include "tools/sxml/check/check_report.h"
#include "tools/sxml/check/record_diagnosis.h"
#include "tools/sxml/commands.h"
#include "tools/sxml/convert/document_conversion.h"
#include "tools/sxml/convert/record_conversion.h"
#include "tools/sxml/document.h"
#include "tools/sxml/documents/record_document.h"
#include "tools/sxml/failure.h"
#include "tools/sxml/options/encoding_option.h"
#include "tools/sxml/options/layout_source.h"
#include "tools/sxml/options/options.h"
#include "tools/sxml/options/record_input.h"
#include "tools/sxml/options/record_target.h"
#include "tools/sxml/options/setting_options.h"
#include "tools/sxml/output/atomic_output.h"

namespace command {

namespace {

using conversion::ByteSource;
using conversion::CharacterSet;
using conversion::DocumentSource;

struct CheckOptions {
    std::string file;
    std::string kind;  // "records", "xml", or empty: detected from the content
    LayoutOptions layout;
    RecordFileOptions input;
    DocumentOptions document;
    bool is_json = false;
};

// Every record is converted; findings go to the report only.
ReportOptions silent_report() {
    ReportOptions options;
    options.rejects = platform::null_device();
    options.is_silent = true;
    return options;
}

// What a check needs, once for both directions.
struct Check {
    Check(const CheckOptions& given, const DocumentSource& document, RunFiles& run_files)
        : options(given), source(document), files(run_files) {}

    const CheckOptions& options;
    const DocumentSource& source;
    RunFiles& files;
    ReportOptions silence = silent_report();
    RunReport report = RunReport(silence, source.name());
    RejectFile rejects = RejectFile(silence, "");
};

std::vector<std::uint8_t> beginning_of(const DocumentSource& source, std::size_t size,
                                       const RecordFileOptions& options = {}) {
    ByteSource bytes = value_of(ByteSource::open(source.file(), source.name()));
    check(bytes.leave_out(options.skip, options.skip_end));
    std::vector<std::uint8_t> beginning(size);
    beginning.resize(value_of(bytes.read(beginning.data(), size)));
    return beginning;
}

// A document begins, after a byte order mark and blanks, with a tag, a declaration or a comment.
bool looks_like_document(const DocumentSource& source) {
    constexpr std::size_t LOOKED_AT = 4096;
    std::string text;
    for (const std::uint8_t byte : beginning_of(source, LOOKED_AT)) {
        // UTF-16 has every other byte 0.
        if (byte != 0) text += static_cast<char>(byte);
    }
    for (const std::string mark : {"\xEF\xBB\xBF", "\xFE\xFF", "\xFF\xFE"}) {
        if (text.starts_with(mark)) text.erase(0, mark.size());
    }
    const std::size_t start = text.find_first_not_of(" \t\r\n");
    if (start == std::string::npos || text[start] != '<' || start + 1 == text.size()) return false;
    const auto next = static_cast<unsigned char>(text[start + 1]);
    return next == '?' || next == '!' || next == '_' || next == ':' || std::isalpha(next) != 0 ||
           next >= 0x80;
}

Reading reading_of(const Check& check, const CharacterSet& characters) {
    return {LayoutSource(check.options.layout).load(record_encoding(characters), check.files),
            characters};
}

// Why records do not fit. Warnings about the layout have been printed already.
std::string diagnose(const Check& check, Reading& own, RecordSample sample) {
    const CheckOptions& options = check.options;
    if (options.layout.file == "-") return {};
    const std::size_t size = sample_size(static_cast<std::size_t>(own.description.record_length()));
    sample.bytes = beginning_of(check.source, size, options.input);
    sample.is_whole_file = sample.bytes.size() < size;
    std::vector<Reading> others;
    for (const std::string name : {"utf-8", "cp037", "iso-8859-1"}) {
        const CharacterSet characters = find_character_set(name, "--encoding");
        if (characters.declared_name() == own.characters.declared_name() &&
            characters.is_utf8() == own.characters.is_utf8() &&
            characters.is_ebcdic() == own.characters.is_ebcdic()) {
            continue;
        }
        others.push_back(
            {LayoutSource(options.layout).load_quietly(record_encoding(characters)), characters});
    }
    return reason_for_misfit(sample, own, others);
}

// Runs a conversion to its end, or to its failure. Result: the message of that.
template <class Conversion>
std::string failure_of(Conversion& conversion) {
    try {
        conversion.run();
    } catch (const Failure& failure) {
        if (failure.status() == EXIT_USAGE) throw;
        return failure.what();
    }
    return {};
}

// Result: whether a conversion would lose something.
bool print(const Check& check, const CheckOutcome& outcome) {
    write_output("-", check.options.is_json ? check_json(outcome) : check_text(outcome));
    return outcome.loses();
}

bool check_records(Check& check) {
    const CheckOptions& options = check.options;
    const CharacterSet characters = records_character_set(options.input.encoding);
    force_setting("SXML_ENCODING", characters.declared_name());
    Reading own = reading_of(check, characters);
    check.files.check();
    RecordInput input(check.source.file(), options.input,
                      {static_cast<std::size_t>(own.description.record_length()),
                       characters.space(), own.description.asks_for_last()},
                      check.source.name());
    const AtomicOutput nothing(platform::null_device());
    FieldStatistics statistics(own.description, own.characters);
    RecordSample sample;
    sample.is_fixed = input.format().kind == conversion::RecordFormat::Kind::fixed;
    RecordConversion conversion(input, own.description, own.characters, nothing, check.report,
                                check.rejects, options.input.controls);
    check_lines(input.format(), characters, conversion.fields(), check.report);
    conversion.observe([&](const conversion::Record& record) {
        statistics.add(record);
        if (sample.records.size() >= RECORDS_LOOKED_AT) return;
        sample.records.emplace_back(record.data, record.data + record.length);
    });
    CheckOutcome outcome{
        check.source.name(), false, check.report, statistics, own.characters, {}, {}};
    outcome.failure = failure_of(conversion);
    outcome.reason = diagnose(check, own, std::move(sample));
    return print(check, outcome);
}

bool check_document(Check& check) {
    const CheckOptions& options = check.options;
    if (options.input.skip > 0 || options.input.skip_end > 0) {
        fail_usage("--skip: a document is read as a whole; leave the option out");
    }
    const RecordTarget target = record_target(options.input);
    check_lengths(target, options.document);
    const CharacterSet texts = find_character_set("utf-8", "--encoding");
    Reading own = reading_of(check, target.characters.value_or(texts));
    check.files.check();
    RecordDocument source(check.source, options.document);
    source.prepare(own.description, check.report);
    conversion::ByteSink sink = value_of(conversion::ByteSink::open(platform::null_device()));
    const auto store = conversion::write_records(target.format, sink);
    auto input = source.input();
    input.takes_hex = options.input.controls == conversion::Controls::hex;
    const auto document =
        value_of(conversion::InputDocument::open(own.description, target.set(), input));
    FieldStatistics statistics(own.description, document->characters());
    const auto state = platform::state_of(source.source().file());
    const RecordsWanted wanted{target.format.has_lengths(), options.document.min_record_length,
                               options.input.first, options.input.count};
    DocumentConversion conversion(*document, state ? std::optional(state->size) : std::nullopt,
                                  *store, wanted, check.report, check.rejects);
    conversion.observe([&](const conversion::InputDocument& read) { statistics.add(read); });
    CheckOutcome outcome{check.source.name(), true, check.report, statistics, texts, {}, {}};
    outcome.failure = failure_of(conversion);
    return print(check, outcome);
}

void check_file(const CheckOptions& options) {
    RunFiles files;
    load_module();
    apply_settings(options.layout.settings);
    const DocumentSource file = value_of(DocumentSource::open(options.file));
    files.reads_document(options.file, file);
    files.writes("-");
    const bool is_document =
        options.kind.empty() ? looks_like_document(file) : options.kind == "xml";
    if (!is_document && options.document.are_given()) {
        fail_usage(file.name() +
                   " is a record file (--as xml says otherwise); --record, --attributes, "
                   "--min-record-length and --buffer are for documents");
    }
    Check check(options, file, files);
    if (is_document) check.report.warn_of_losses(file);
    if (is_document ? check_document(check) : check_records(check)) {
        throw Failure("", EXIT_FAILED);
    }
}

}  // namespace

void add_check_command(Command application) {
    const Command command = application.add_subcommand(
        "check", "convert a file without writing anything, and tell what would be lost");
    auto options = std::make_shared<CheckOptions>();
    command.add_argument(
        "FILE", options->file,
        "a record file or a document: a file, a web address, - for standard input");
    add_layout_options(command, options->layout, LayoutArgument::option);
    command
        .add_option("--as", options->kind,
                    "what FILE is: records or xml (default: told by its content)")
        .one_of({"records", "xml"});
    add_record_options(command, options->input);
    add_document_options(command, options->document);
    add_controls_option(command, options->input.controls,
                        "what to-xml is to do with control characters, as its option");
    command.add_flag("--json", options->is_json, "print the report as JSON");
    command.footer(
        "Exit status 0 says that a conversion would lose nothing, 1 that it would.\n"
        "Example:\n"
        "  sxml check orders.dat --layout orders.cpy\n"
        "  sxml check orders.xml --layout orders.cpy --json");
    command.run([options] { check_file(*options); });
}

}  // namespace command
