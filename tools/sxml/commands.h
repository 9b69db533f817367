// The subcommands. Each function adds its subcommand, with options and help, to the application;
// the subcommand runs as a callback of the parse and throws Failure when it cannot do its work.
#pragma once

namespace CLI {
class App;
}

namespace command {

void add_layout_command(CLI::App& application);
void add_copybook_command(CLI::App& application);
void add_compile_command(CLI::App& application);
void add_to_xml_command(CLI::App& application);
void add_from_xml_command(CLI::App& application);
void add_dtd_command(CLI::App& application);
void add_schema_command(CLI::App& application);
void add_check_command(CLI::App& application);
void add_dump_command(CLI::App& application);
void add_cob_command(CLI::App& application);
void add_cob_cc_command(CLI::App& application);
void add_rewrite_command(CLI::App& application);
void add_tree_command(CLI::App& application);
void add_split_command(CLI::App& application);
void add_join_command(CLI::App& application);

}  // namespace command
