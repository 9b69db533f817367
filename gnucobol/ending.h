// How the program ends: documents that are still open become complete when it ends as it means to,
// and are dropped when the runtime ends it for an error.
#pragma once

namespace gnucobol {

// From now on the end of the program is watched. `finish` is called once, when the process ends,
// with whether the documents are complete. Called again before each operation, it sees to it that
// the runtime still tells of its errors.
void watch_ending(void (*finish)(bool is_complete));

// The program runs STOP RUN.
void note_stop_run();
// The program has installed or removed an error procedure of its own, which may hide ours.
void note_error_procedure();

}  // namespace gnucobol
