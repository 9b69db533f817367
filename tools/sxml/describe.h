// The command line as data, from which the manual pages and the shells' completions are made.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace command {

// JSON: name, help, footer, options and positionals of the command and of each subcommand. Hidden
// ones (without a group) are left out.
std::string describe(const CLI::App& application);

}  // namespace command
