// sxml cob, where there is no adapter for COBOL programs.

#include "tools/sxml/commands.h"
#include "tools/sxml/failure.h"

namespace command {

namespace {

constexpr const char* MISSING = "not available on Windows";

void add_missing(Command command) {
    command.hand_words_on();
    command.run([] {
        fail("cob: not available on Windows; compile the program on Linux, with `sxml cob` there");
    });
}

}  // namespace

void add_cob_command(Command application) {
    add_missing(application.add_subcommand("cob", MISSING));
}

void add_cob_cc_command(Command application) {
    add_missing(application.add_hidden_subcommand("cob-cc", MISSING));
}

}  // namespace command
