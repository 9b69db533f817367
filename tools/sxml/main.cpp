// sxml: record files to XML, record layouts, DTDs and schemas, from a shell.

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "platform/interrupts.h"
#include "platform/standard_streams.h"
#include "tools/sxml/commands.h"
#include "tools/sxml/describe.h"
#include "tools/sxml/errors.h"
#include "tools/sxml/version.h"

namespace {

int run(int argc, char** argv) {
    CLI::App application{"Turns COBOL record files into XML documents and back."};
    application.name("sxml");
    application.set_version_flag("--version", command::version_text);
    application
        .add_flag_callback("--describe",
                           [&application] {
                               std::puts(command::describe(application).c_str());
                               throw CLI::Success();
                           })
        ->group("");  // hidden: for the build
    application.require_subcommand(1);
    application.footer(
        "`sxml SUBCOMMAND --help` shows the options of a subcommand and an example.");
    command::add_to_xml_command(application);
    command::add_from_xml_command(application);
    command::add_layout_command(application);
    command::add_compile_command(application);
    command::add_dtd_command(application);
    command::add_dump_command(application);
    command::add_schema_command(application);
    command::add_cob_command(application);
    command::add_rewrite_command(application);
    command::add_tree_command(application);
    try {
        application.parse(argc, argv);
    } catch (const CLI::RequiredError& error) {
        const std::vector<std::string> unknown = application.remaining();
        if (application.get_subcommands().empty() && !unknown.empty()) {
            command::fail_usage("there is no subcommand " + unknown.front() +
                                "; `sxml --help` lists them");
        }
        application.exit(error);
        return command::EXIT_USAGE;
    } catch (const CLI::ParseError& error) {
        return application.exit(error) == 0 ? 0 : command::EXIT_USAGE;
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (!platform::open_missing_standard_streams()) return command::EXIT_FAILED;
    platform::handle_interrupts();
    try {
        return run(argc, argv);
    } catch (const command::Failure& failure) {
        if (*failure.what() != '\0') std::fprintf(stderr, "sxml: %s\n", failure.what());
        return failure.status();
    } catch (const std::bad_alloc&) {
        std::fputs("sxml: there is not enough memory\n", stderr);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "sxml: %s\n", error.what());
    }
    return command::EXIT_FAILED;
}
