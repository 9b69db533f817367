// Whether this library may serve the COBOL runtime of the process.
#pragma once

namespace gnucobol {

// True for libcob 3.1, when this library was compiled for it, too: its record of a file is read and
// changed here, and other versions have another one. Otherwise says so on standard error, once.
bool is_known_runtime();

}  // namespace gnucobol
