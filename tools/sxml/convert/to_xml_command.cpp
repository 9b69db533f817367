// sxml to-xml: turns a record file into an XML document.

#include <array>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <string_view>

#include "host/config.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "tools/sxml/commands.h"
#include "tools/sxml/document.h"
#include "tools/sxml/failure.h"
#include "tools/sxml/jobs/jobs_option.h"
#include "tools/sxml/jobs/to_xml_parts.h"
#include "tools/sxml/layout/schema_file.h"
#include "tools/sxml/options/encoding_option.h"
#include "tools/sxml/options/layout_source.h"
#include "tools/sxml/options/options.h"
#include "tools/sxml/options/record_input.h"
#include "tools/sxml/options/setting_options.h"

namespace command {

namespace {

using conversion::CharacterSet;

struct ToXmlOptions {
    std::string records;
    std::string xml;
    LayoutOptions layout;
    std::string schema;
    RecordFileOptions input;
    ReportOptions report;
    std::optional<unsigned> jobs;
};

// The name of a schema in a document: a reference relative to where the document is, or to the
// current folder for one without a place.
std::string schema_reference(const std::string& schema, const std::string& document) {
    namespace fs = std::filesystem;
    const fs::path folder = document == "-"
                                ? fs::current_path()
                                : fs::absolute(platform::path_of(document)).parent_path();
    const fs::path reference = fs::weakly_canonical(fs::absolute(platform::path_of(schema)))
                                   .lexically_relative(fs::weakly_canonical(folder));
    std::string escaped;
    for (const char c : platform::name_of(reference.generic_u8string())) {
        const auto byte = static_cast<unsigned char>(c);
        const bool is_plain =
            std::isalnum(byte) != 0 || std::string_view("/-._~").find(c) != std::string_view::npos;
        std::array<char, 4> code{};
        std::snprintf(code.data(), code.size(), "%%%02X", static_cast<unsigned>(byte));
        escaped += is_plain ? std::string(1, c) : code.data();
    }
    return escaped;
}

// The schema of a document: a file of its own, which the document names.
struct SchemaChoice {
    std::string file;       // to be written; empty: none is
    std::string reference;  // how the document names it; empty: it does not
};

// --schema comes before what the settings say. Throws Failure for a schema without a name.
SchemaChoice choose_schema(const ToXmlOptions& options) {
    if (!options.schema.empty()) {
        const auto state = platform::state_of(options.schema);
        const bool is_stream = state && state->kind == platform::FileKind::other;
        if (is_stream || options.schema == "-") {
            fail_usage("--schema " + options.schema +
                       ": the document names the file of its schema, and a stream has no name; "
                       "`sxml schema` prints one");
        }
        return {options.schema, schema_reference(options.schema, options.xml)};
    }
    if (create_style() != CreateStyle::schema) return {};
    const std::string name = setting_text("SXML_SCHEMA_NAME");
    if (name.empty()) {
        fail_usage(
            "SXML_CREATE_STYLE is SCHEMA, and the schema has no name: give it one with "
            "--schema FILE");
    }
    return {host_config_flag("SXML_CREATE_SCHEMA", 0) != 0 ? name : std::string(), name};
}

// The schema is written first, under a temporary name of its own, and the document only refers to
// it.
class SchemaBesideDocument {
  public:
    SchemaBesideDocument(const host::Module& module, const SchemaChoice& choice,
                         const records::Description& description, RunReport& report) {
        if (choice.reference.empty()) return;
        if ((description.xfd().flags & XFD_SEVERAL_LAYOUTS) != 0) {
            report.warn_of(choice.reference +
                           ": the layout has several records; the schema's top element knows the "
                           "first one only");
        }
        force_setting("SXML_CREATE_STYLE", "SCHEMA");
        if (!choice.file.empty()) {
            output_.emplace(choice.file);
            records::bind_description(&description);
            write_schema_file(module, *output_);
        }
        force_setting("SXML_CREATE_SCHEMA", "no");
        force_setting("SXML_SCHEMA_NAME", choice.reference);
    }

    void prepare() {
        if (output_) output_->prepare();
    }
    void commit() {
        if (output_) output_->commit();
    }

  private:
    std::optional<AtomicOutput> output_;
};

// Result: the exit status.
int convert(const ToXmlOptions& options, const host::Module& module, RunFiles& files,
            RunReport& report) {
    const CharacterSet characters = records_character_set(options.input.encoding);
    force_setting("SXML_ENCODING", characters.declared_name());
    files.reads(options.records);
    files.writes(options.xml);
    const SchemaChoice schema_choice = choose_schema(options);
    if (!schema_choice.file.empty()) files.writes(schema_choice.file);
    note_outputs(options.report, files);
    const records::Description description =
        LayoutSource(options.layout).load(record_encoding(characters), files);
    report.check(files);
    RecordInput input(options.records, options.input,
                      {static_cast<std::size_t>(description.record_length()), characters.space(),
                       description.asks_for_last()});
    AtomicOutput output(options.xml);
    SchemaBesideDocument schema(module, schema_choice, description, report);
    RejectFile rejects(options.report, report.input_name());
    const auto fields = value_of(conversion::RecordFields::of(description.xfd()));
    check_lines(input.format(), characters, fields, report);
    convert_records({options.records, options.input, input, description, characters, output,
                     options.report, report, rejects, options.jobs});
    // Both files are complete before the first of them changes.
    schema.prepare();
    output.prepare();
    schema.commit();
    output.commit();
    return rejects.count() > 0 ? EXIT_REJECTED : 0;
}

void convert_to_xml(const ToXmlOptions& options) {
    RunFiles files;
    const host::Module& module = load_module();
    apply_settings(options.layout.settings);
    const std::string name = options.records == "-" ? "standard input" : options.records;
    run_with_report(options.report, name,
                    [&](RunReport& report) { return convert(options, module, files, report); });
}

}  // namespace

void add_to_xml_command(Command application) {
    const Command command =
        application.add_subcommand("to-xml", "turn a record file into an XML document");
    auto options = std::make_shared<ToXmlOptions>();
    command.add_argument("RECORDS", options->records, "the record file, - for standard input");
    command.add_argument("XML", options->xml, "the document to write, - for standard output");
    add_layout_options(command, options->layout, LayoutArgument::option);
    add_record_options(command, options->input);
    add_controls_option(
        command, options->input.controls,
        "control characters in texts, which XML does not allow: refuse (default), replace "
        "by U+FFFD, drop, or hex: the field as hexadecimal digits");
    command
        .add_option(
            "--schema", options->schema,
            "write the XML Schema to this file and name it in the document, which then has no DTD")
        .value("FILE");
    add_jobs_option(command, options->jobs);
    add_report_options(command, options->report);
    command.footer(
        "Example:\n"
        "  sxml to-xml orders.dat orders.xml --layout orders.cpy\n"
        "  sxml to-xml orders.dat orders.xml --layout orders.cpy --schema orders.xsd\n"
        "  sxml to-xml - - --layout orders.cpy --encoding cp037 < orders.ebc > orders.xml");
    command.run([options] { convert_to_xml(*options); });
}

}  // namespace command
