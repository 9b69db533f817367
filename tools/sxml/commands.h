// The subcommands. Each function adds its subcommand, with options and help, to the application;
// the subcommand runs as a callback of the parse and throws Failure when it cannot do its work.
#pragma once

#include "tools/sxml/command.h"

namespace command {

void add_layout_command(Command application);
void add_copybook_command(Command application);
void add_compile_command(Command application);
void add_to_xml_command(Command application);
void add_from_xml_command(Command application);
void add_dtd_command(Command application);
void add_schema_command(Command application);
void add_check_command(Command application);
void add_dump_command(Command application);
void add_cob_command(Command application);
void add_cob_cc_command(Command application);
void add_rewrite_command(Command application);
void add_tree_command(Command application);
void add_split_command(Command application);
void add_join_command(Command application);

}  // namespace command
