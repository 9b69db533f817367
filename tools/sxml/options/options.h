// Options that several subcommands share.
#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "records/description.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace command {

// Which layout to use, and how to read its source.
struct LayoutOptions {
    std::string file;  // a copybook, a program or a description file
    records::CopybookOptions copybook;
    records::LayoutOptions layout;
    std::vector<std::string> settings;  // NAME=value, from --set
};

enum class LayoutArgument { positional, option };

// Adds LAYOUT (or --layout) and everything that says how to read it. `options` must live until the
// command line has been parsed.
void add_layout_options(CLI::App& command, LayoutOptions& options, LayoutArgument argument);

// Adds the argument, of this name, that is the document to read.
void add_document_argument(CLI::App& command, const char* name, std::string& document);

// Adds --record, which says where in a document the records are.
void add_record_path_option(CLI::App& command, std::string& path);

// Lets an option take whole numbers from `smallest` to `largest` only.
void limit_to_numbers(
    CLI::Option& option, std::uint64_t smallest,
    std::uint64_t largest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()));

}  // namespace command
