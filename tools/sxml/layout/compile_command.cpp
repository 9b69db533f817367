// sxml compile: makes a description file of a copybook.

#include <memory>

#include "tools/sxml/commands.h"
#include "tools/sxml/document.h"
#include "tools/sxml/options/layout_source.h"
#include "tools/sxml/options/options.h"
#include "tools/sxml/options/setting_options.h"
#include "tools/sxml/output/atomic_output.h"

namespace command {

namespace {

struct CompileOptions {
    LayoutOptions layout;
    std::string output;
};

void compile_layout(const CompileOptions& options) {
    RunFiles files;
    load_module();  // it declares the settings
    apply_settings(options.layout.settings);
    files.writes(options.output);
    const records::Description description =
        LayoutSource(options.layout).load(records::RecordEncoding::ascii, files);
    files.check();
    write_output(options.output, records::description_to_json(description));
}

}  // namespace

void add_compile_command(Command application) {
    const Command command =
        application.add_subcommand("compile", "make a description file (.xfd) of a layout");
    auto options = std::make_shared<CompileOptions>();
    add_layout_options(command, options->layout, LayoutArgument::positional);
    command.add_option("-o,--output", options->output, "the file to write, - for standard output")
        .required()
        .value("NAME.xfd");
    command.footer("Example:\n  sxml compile orders.cpy -o orders.xfd");
    command.run([options] { compile_layout(*options); });
}

}  // namespace command
