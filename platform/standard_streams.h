// Standard input, output and error of the process.
#pragma once

#include <optional>

namespace platform {

// Opens the null device for those of the three that are closed, so that no file that is opened
// later takes their place. Reading or writing them fails. Result: false when that is impossible.
bool open_missing_standard_streams();

bool is_terminal(int descriptor);
// Columns of the terminal; nothing where there is none, or it does not say.
std::optional<int> terminal_width(int descriptor);

}  // namespace platform
