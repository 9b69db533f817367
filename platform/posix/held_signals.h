// Holds signals back for a while.
#pragma once

#include <signal.h>

namespace platform {

// While this lives, no signal comes to this thread but those that it raises itself by a fault: held
// back, they would end the process.
class HeldSignals {
  public:
    HeldSignals() {
        sigset_t all;
        sigfillset(&all);
        for (const int own : {SIGBUS, SIGFPE, SIGILL, SIGSEGV, SIGSYS, SIGTRAP}) {
            sigdelset(&all, own);
        }
        pthread_sigmask(SIG_BLOCK, &all, &before_);
    }
    ~HeldSignals() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;

  private:
    sigset_t before_{};
};

}  // namespace platform
