// sxml tree: shows the elements of a document.

#include <memory>

#include "tools/sxml/commands.h"
#include "tools/sxml/document.h"
#include "tools/sxml/documents/parsed_document.h"
#include "tools/sxml/documents/tree_printer.h"
#include "tools/sxml/failure.h"
#include "tools/sxml/options/options.h"
#include "tools/sxml/options/run_files.h"
#include "tools/sxml/reports/run_report.h"

namespace command {

namespace {

struct TreeOptions {
    std::string in;
    bool full = false;
};

void print_tree(const TreeOptions& options) {
    RunFiles files;
    const host::Module& module = load_module();
    const XmlApi api = xml_api(module);
    const auto input = value_of(conversion::DocumentSource::open(options.in));
    files.reads_document(options.in, input);
    files.writes("-");
    files.check();
    const ParsedDocument document(api, input,
                                  XMLOPT_ELEMENTS | XMLOPT_CHARACTER_DATA | XMLOPT_XML_DECL);
    ReportOptions all;
    RunReport(all, input.name()).warn_of_losses(input);
    using Texts = TreePrinter::Texts;
    TreePrinter(document, options.full ? Texts::full : Texts::shortened).print();
}

}  // namespace

void add_tree_command(Command application) {
    const Command command = application.add_subcommand(
        "tree", "show a document's elements, a line for each, with their occurrence numbers");
    auto options = std::make_shared<TreeOptions>();
    add_document_argument(command, "IN", options->in);
    command.add_flag("--full", options->full, "do not shorten long values and attributes");
    command.footer("Example:\n  sxml tree orders.xml | less");
    command.run([options] { print_tree(*options); });
}

}  // namespace command
