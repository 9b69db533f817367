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

// From now on signals are watched that end the program, by the system's hand or the runtime's,
// which does what it does after us. A signal that the program itself handles is its own affair.
void watch_signals();

// Has a file removed, and a message about `document` written, when a signal ends the program.
// Result: for forget_at_signal; -1 when there is no room or the names are too long.
int remove_at_signal(const std::string& file, const std::string& document);
void forget_at_signal(int slot);

// Does at once what a signal would: the program ends without destructors.
void remove_as_at_signal();

// Whether a signal, or what removes files as one does, is ending the program.
bool is_ended_by_signal();

}  // namespace gnucobol
