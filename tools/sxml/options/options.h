// Options that several subcommands share.
#pragma once

#include <string>
#include <vector>

#include "records/description.h"

namespace command {

class Command;

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
void add_layout_options(Command command, LayoutOptions& options, LayoutArgument argument);

// Adds the argument, of this name, that is the document to read.
void add_document_argument(Command command, const char* name, std::string& document);

// Adds --record, which says where in a document the records are.
void add_record_path_option(Command command, std::string& path);

}  // namespace command
