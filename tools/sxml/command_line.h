// The command line: subcommands, help, and messages about wrong usage.
#pragma once

namespace command {

// Runs the subcommand that the words ask for. Throws Failure.
void run_command_line(int argc, char** argv);

}  // namespace command
