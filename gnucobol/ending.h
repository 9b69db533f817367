// How the program ends: documents that are still open become complete when it ends normally, and
// are dropped when the runtime ends it because of an error.
#pragma once

namespace gnucobol {

struct EndingHandlers {
    // Called once, when the process ends, with whether the documents are complete. Result: false
    // when one could not be stored; the process then fails, even if the program does not.
    bool (*finish)(bool is_complete);
    // Called in each child process that begins as a copy of this one.
    void (*leave_to_parent)();
};

// Starts watching for the end of the program.
void watch_ending(const EndingHandlers& handlers);

// Before each operation: ensures that the runtime still reports its errors.
void survive_errors();

// The program runs STOP RUN.
void note_stop_run();
// The program has installed or removed an error procedure of its own, which may hide ours.
void note_error_procedure();

}  // namespace gnucobol
