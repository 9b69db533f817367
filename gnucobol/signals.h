// Signals that end the program while documents are written.
#pragma once

#include <string>

namespace gnucobol {

// While one lives, what ends the program waits: it takes effect when the last of them goes.
class SignalsWait {
  public:
    SignalsWait();
    ~SignalsWait();
    SignalsWait(const SignalsWait&) = delete;
    SignalsWait& operator=(const SignalsWait&) = delete;
};

// Installs handlers for signals that end the program, whether by default or by the runtime, whose
// own handling follows. Signals that the program itself handles are left alone.
void watch_signals();

// Has a file removed, and a message about `document` written, when a signal ends the program.
// Result: for forget_at_signal; -1 when there is no room or the names are too long.
int remove_at_signal(const std::string& file, const std::string& document);
void forget_at_signal(int slot);

// Does immediately what a signal would do: the program ends without destructors.
void remove_as_at_signal();

// Whether a signal, or what removes files as one does, is ending the program.
bool is_ended_by_signal();

}  // namespace gnucobol
