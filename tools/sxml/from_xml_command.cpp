// sxml from-xml: turns an XML document into a record file.

#include <CLI/CLI.hpp>
#include <cctype>
#include <map>
#include <memory>
#include <optional>

#include "conversion/documents/document_check.h"
#include "conversion/documents/document_source.h"
#include "conversion/formats/record_format.h"
#include "tools/sxml/atomic_output.h"
#include "tools/sxml/commands.h"
#include "tools/sxml/errors.h"
#include "tools/sxml/field_text.h"
#include "tools/sxml/input_records.h"
#include "tools/sxml/input_texts.h"
#include "tools/sxml/layout_source.h"
#include "tools/sxml/options.h"
#include "tools/sxml/progress.h"
#include "tools/sxml/record_translation.h"
#include "tools/sxml/settings.h"

namespace command {

namespace {

struct FromXmlOptions {
    std::string xml;
    std::string records;
    LayoutOptions layout;
    std::string encoding;
    bool lines = false;
    BufferFill fill = BufferFill::by_type;
};

const std::map<std::string, BufferFill> BUFFER_FILLS = {
    {"spaces", BufferFill::spaces}, {"zeros", BufferFill::zeros}, {"keep", BufferFill::keep}};

constexpr std::uint64_t RECORDS_BETWEEN_LOOKS = 1024;

DocumentText document_text(const std::string& encoding) {
    std::string lower = encoding;
    for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return lower == "iso-8859-1" ? DocumentText::latin1 : DocumentText::utf8;
}

CharacterSet character_set(const FromXmlOptions& options, DocumentText text) {
    if (!options.encoding.empty()) return CharacterSet(options.encoding);
    return CharacterSet(text == DocumentText::latin1 ? "iso-8859-1" : "utf-8");
}

TextTranslation text_translation(InputTexts& texts, const CharacterSet& characters) {
    TextTranslation translation{[&texts](const Field& field, std::span<const std::uint8_t> bytes) {
                                    return texts.convert(field, bytes);
                                },
                                {}};
    for (std::size_t byte = 0; byte < translation.filler.size(); ++byte) {
        translation.filler[byte] = static_cast<std::uint8_t>(byte);
    }
    if (!characters.is_ebcdic()) return translation;
    for (std::size_t byte = 0; byte < translation.filler.size(); ++byte) {
        if (characters.classify(static_cast<std::uint8_t>(byte)) == ByteClass::undefined) continue;
        translation.filler[characters.translation()[byte]] = static_cast<std::uint8_t>(byte);
    }
    return translation;
}

void convert_from_xml(const FromXmlOptions& options) {
    const host::Module module = load_module_for_input();
    apply_settings(options.layout.settings);
    const auto document = value_of(conversion::DocumentSource::open(options.xml));
    const DocumentText text =
        document_text(value_of(conversion::declared_encoding(document.file())));
    const CharacterSet characters = character_set(options, text);
    if (options.lines && characters.is_ebcdic()) {
        fail_usage("--line: records in " + characters.name() + " are of fixed length");
    }
    // What the module fills, and what goes into the file.
    RunFiles files;
    files.reads(document.file());
    files.writes(options.records);
    const LayoutSource layout(options.layout);
    records::Description description = layout.load(records::RecordEncoding::ascii, files);
    files.check();
    std::optional<records::Description> translated;
    if (characters.is_ebcdic()) {
        translated = layout.load(records::RecordEncoding::ebcdic, files, Reports::hidden);
    }
    records::bind_description(&description);

    RecordFields fields(description.xfd());
    RecordBuffer buffer(description.xfd(), description.record_length(), options.fill);
    FieldText field_text(text, characters);
    InputTexts texts(description.xfd(), fields, field_text, document.name());
    RecordTranslation translation(
        description.xfd(), translated ? translated->xfd() : description.xfd(),
        text_translation(texts, characters), fields, description.record_length());
    const bool translates = translated || field_text.converts();

    AtomicOutput output(options.records);
    conversion::ByteSink sink = output.open();
    const auto store = conversion::write_records(
        options.lines ? conversion::RecordFormat::lines : conversion::RecordFormat::fixed, sink);
    InputRecords records(module, document.file(), document.name(), description, fields, buffer,
                         texts);
    Progress progress(std::nullopt);
    while (records.next()) {
        const std::uint8_t* record = buffer.data();
        try {
            if (translates) {
                record = translation.translate(record, fields.choose(record),
                                               description.record_length());
            }
            check(store->add({record, static_cast<std::size_t>(description.record_length())}));
        } catch (const Failure& failure) {
            fail(document.name() + ": record " + std::to_string(records.count()) + ": " +
                 failure.what());
        }
        if (records.count() % RECORDS_BETWEEN_LOOKS == 0) {
            const auto length = static_cast<std::uint64_t>(description.record_length());
            progress.update(records.count(), records.count() * length);
        }
    }
    records.finish();
    check(store->close());
    output.commit();
}

}  // namespace

void add_from_xml_command(CLI::App& application) {
    CLI::App* command =
        application.add_subcommand("from-xml", "turn an XML document into a record file");
    auto options = std::make_shared<FromXmlOptions>();
    command
        ->add_option("XML", options->xml,
                     "the document: a file, an http: URL, - for standard input")
        ->required()
        ->option_text(" ");
    command
        ->add_option("RECORDS", options->records, "the record file to write, - for standard output")
        ->required()
        ->option_text(" ");
    add_layout_options(*command, options->layout, LayoutArgument::option);
    command->add_flag("--line", options->lines,
                      "write a line for each record, ended by LF (default: fixed length)");
    command
        ->add_option("--encoding", options->encoding,
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
    command->footer(
        "Example:\n"
        "  sxml from-xml orders.xml orders.dat --layout orders.cpy\n"
        "  sxml from-xml - - --layout orders.cpy --encoding cp037 < orders.xml > orders.ebc");
    command->callback([options] { convert_from_xml(*options); });
}

}  // namespace command
