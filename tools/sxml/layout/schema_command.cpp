// sxml schema: prints the XML Schema of the documents that a layout gives.

#include <memory>

#include "tools/sxml/commands.h"
#include "tools/sxml/document.h"
#include "tools/sxml/layout/schema_file.h"
#include "tools/sxml/options/layout_source.h"
#include "tools/sxml/options/options.h"
#include "tools/sxml/options/setting_options.h"
#include "tools/sxml/output/atomic_output.h"
#include "tools/sxml/output/scratch_output.h"

namespace command {

namespace {

void print_schema(const LayoutOptions& options) {
    RunFiles files;
    const host::Module& module = load_module();
    apply_settings(options.settings);
    files.writes("-");
    const records::Description description =
        LayoutSource(options).load(records::RecordEncoding::ascii, files);
    files.check();
    records::bind_description(&description);
    const ScratchOutput schema;
    write_schema_file(module, schema.output());
    write_output("-", schema.text());
}

}  // namespace

void add_schema_command(Command application) {
    const Command command =
        application.add_subcommand("schema", "print the XML Schema of a layout's documents");
    auto options = std::make_shared<LayoutOptions>();
    add_layout_options(command, *options, LayoutArgument::positional);
    command.footer(
        "Example:\n  sxml schema orders.cpy > orders.xsd\n"
        "  xmllint --noout --schema orders.xsd orders.xml");
    command.run([options] { print_schema(*options); });
}

}  // namespace command
