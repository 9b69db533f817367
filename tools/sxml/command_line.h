// The command line: subcommands, help, and what is said about a wrong one.
#pragma once

namespace command {

// Runs the subcommand that the words ask for. Throws Failure.
void run_command_line(int argc, char** argv);

}  // namespace command
