// The help of the command and its subcommands, wrapped to fit the terminal.
#pragma once

#include <memory>

namespace CLI {
class FormatterBase;
}

namespace command {

// To be given to the application before its subcommands are added.
std::shared_ptr<CLI::FormatterBase> help_formatter();

}  // namespace command
