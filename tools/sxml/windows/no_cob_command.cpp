// sxml cob, where there is no adapter for COBOL programs.
#include <CLI/CLI.hpp>

#include "tools/sxml/commands.h"
#include "tools/sxml/failure.h"

namespace command {

namespace {

void add_missing(CLI::App& application, const char* name, const char* group) {
    CLI::App* command = application.add_subcommand(name, "not available on Windows");
    command->group(group);
    command->prefix_command();
    command->callback([] {
        fail("cob: not available on Windows; compile the program on Linux, with `sxml cob` there");
    });
}

}  // namespace

void add_cob_command(CLI::App& application) {
    add_missing(application, "cob", "Subcommands");
}

void add_cob_cc_command(CLI::App& application) {
    add_missing(application, "cob-cc", "");
}

}  // namespace command
