// Record descriptions and records that several tests use.
#pragma once

#include <string>
#include <string_view>

#include "tests/support/xfd_builder.h"

// custfile: one layout with numbers, a nested group and a table.
XfdBuilder customers();
extern const std::string SMITH;  // a record of it, 47 bytes

// orders: two layouts. hdr: kind, hdr_text while byte 0 is H; dtl: dtl_kind, amount while byte 1 is
// D. Records are 6 bytes.
XfdBuilder orders();

// lines: a table of two lines with a table of two quantities in each, and two groups that hold a
// field of the same name. Records are 14 bytes.
XfdBuilder order_lines();

// A text of lines, each of which ends as output lines do.
std::string lines(std::string_view text);
