// sxml from-xml: turns an XML document into a record file.

#include <memory>
#include <optional>

#include "conversion/documents/document_source.h"
#include "tools/sxml/commands.h"
#include "tools/sxml/document.h"
#include "tools/sxml/documents/record_document.h"
#include "tools/sxml/failure.h"
#include "tools/sxml/jobs/from_xml_parts.h"
#include "tools/sxml/jobs/jobs_option.h"
#include "tools/sxml/options/encoding_option.h"
#include "tools/sxml/options/layout_source.h"
#include "tools/sxml/options/options.h"
#include "tools/sxml/options/record_target.h"
#include "tools/sxml/options/setting_options.h"
#include "tools/sxml/output/atomic_output.h"

namespace command {

namespace {

struct FromXmlOptions {
    std::string xml;
    std::string records;
    LayoutOptions layout;
    RecordFileOptions output;
    DocumentOptions document;
    ReportOptions report;
    std::optional<unsigned> jobs;
};

// Result: the exit status.
int convert(const FromXmlOptions& options, RecordDocument& source, RunFiles& files,
            RunReport& report) {
    const RecordTarget target = record_target(options.output);
    check_lengths(target, options.document);
    files.writes(options.records);
    note_outputs(options.report, files);
    const records::Description description =
        LayoutSource(options.layout).load(target.encoding(), files);
    report.check(files);
    source.prepare(description, report);
    AtomicOutput output(options.records);
    RejectFile rejects(options.report, report.input_name());
    const RecordsWanted wanted{target.format.has_lengths(), options.document.min_record_length,
                               options.output.first, options.output.count};
    auto input = source.input();
    input.takes_hex = options.output.controls == conversion::Controls::hex;
    convert_document({description, target.set(), input, target.format, wanted, output,
                      options.report, report, rejects, options.jobs});
    output.commit();
    return rejects.count() > 0 ? EXIT_REJECTED : 0;
}

void convert_from_xml(const FromXmlOptions& options) {
    RunFiles files;
    load_module();
    apply_settings(options.layout.settings);
    const std::string name = options.xml == "-" ? "standard input" : options.xml;
    run_with_report(options.report, name, [&](RunReport& report) {
        const auto document = value_of(conversion::DocumentSource::open(options.xml));
        files.reads_document(options.xml, document);
        RecordDocument source(document, options.document);
        report.warn_of_losses(document);
        return convert(options, source, files, report);
    });
}

}  // namespace

void add_from_xml_command(Command application) {
    const Command command =
        application.add_subcommand("from-xml", "turn an XML document into a record file");
    auto options = std::make_shared<FromXmlOptions>();
    add_document_argument(command, "XML", options->xml);
    command.add_argument("RECORDS", options->records,
                         "the record file to write, - for standard output");
    add_layout_options(command, options->layout, LayoutArgument::option);
    add_format_options(command, options->output, "how records are told apart");
    add_range_options(command, options->output);
    command
        .add_option("--encoding", options->output.encoding,
                    "character set of the records' text: utf-8, iso-8859-1, an EBCDIC code page "
                    "such as cp037 ... (default: as the document)")
        .value("NAME");
    add_document_options(command, options->document);
    add_jobs_option(command, options->jobs);
    add_controls_option(command, options->output.controls,
                        "hex: text fields come from the hexadecimal digits that to-xml "
                        "--controls hex writes; otherwise of no effect");
    add_report_options(command, options->report);
    command.footer(
        "Example:\n"
        "  sxml from-xml orders.xml orders.dat --layout orders.cpy\n"
        "  sxml from-xml - - --layout orders.cpy --encoding cp037 < orders.xml > orders.ebc");
    command.run([options] { convert_from_xml(*options); });
}

}  // namespace command
