// The console, which outlives the process.
#pragma once

namespace platform {

// Gives the console back the code page that it had before open_missing_standard_streams().
void restore_console();

}  // namespace platform
