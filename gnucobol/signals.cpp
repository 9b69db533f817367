#include "gnucobol/signals.h"

#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>

#include "gnucobol/runtime.h"
#include "platform/interrupts.h"

namespace gnucobol {

namespace {

constexpr std::array<int, 14> POLITE = {SIGINT,  SIGHUP,    SIGQUIT, SIGTERM,  SIGPIPE,
                                        SIGALRM, SIGVTALRM, SIGPROF, SIGXCPU,  SIGUSR1,
                                        SIGUSR2, SIGIO,     SIGPWR,  SIGSTKFLT};
constexpr std::array<int, 7> FAULTS = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGSYS, SIGTRAP};

// A file to remove. Plain arrays, since a handler looks at them.
struct Slot {
    std::atomic<bool> is_used;
    std::array<char, 4200> file;
    std::array<char, 4400> message;
};

std::array<Slot, 256> slots;
std::array<struct sigaction, NSIG> earlier;
volatile std::sig_atomic_t inside = 0;
volatile std::sig_atomic_t waiting = 0;  // the signal that came meanwhile
volatile std::sig_atomic_t is_ending = 0;

// Async-signal-safe.
void remove_files() {
    is_ending = 1;
    for (Slot& slot : slots) {
        if (!slot.is_used.exchange(false)) continue;
        unlink(slot.file.data());
        const char* const text = slot.message.data();
        [[maybe_unused]] const ssize_t count = write(STDERR_FILENO, text, std::strlen(text));
    }
    platform::remove_interrupted_files();
}

void handle(int number) {
    const int error = errno;
    const bool is_fault = std::find(FAULTS.begin(), FAULTS.end(), number) != FAULTS.end();
    if (inside > 0 && !is_fault) {
        waiting = number;
        errno = error;
        return;
    }
    remove_files();
    sigaction(number, &earlier[static_cast<std::size_t>(number)], nullptr);
    // It is blocked while this runs, and comes when we return; a fault comes again by itself.
    raise(number);
    errno = error;
}

// Whether the signal would end the program: a handler of the program's own may let it go on.
bool is_end(const struct sigaction& action) {
    if (action.sa_handler == SIG_DFL) return true;
    if (action.sa_handler == SIG_IGN) return false;
    Dl_info handler{};
    Dl_info runtime{};
    return dladdr(reinterpret_cast<void*>(action.sa_handler), &handler) != 0 &&
           dladdr(reinterpret_cast<void*>(&cob_stop_run), &runtime) != 0 &&
           handler.dli_fbase == runtime.dli_fbase;
}

void watch(int number) {
    struct sigaction& old = earlier[static_cast<std::size_t>(number)];
    if (sigaction(number, nullptr, &old) != 0 || !is_end(old)) return;
    struct sigaction action {};
    action.sa_handler = &handle;
    sigemptyset(&action.sa_mask);
    sigaction(number, &action, nullptr);
}

// A file that reaches the limit on the size of files is to give a status: the signal would end the
// program. A handler of our own is not handed on to other programs, as ignoring the signal is.
void outlive_size_limit() {
    struct sigaction action {};
    if (sigaction(SIGXFSZ, nullptr, &action) != 0 || action.sa_handler != SIG_DFL) return;
    action.sa_handler = [](int) {};
    action.sa_flags = SA_RESTART;
    sigaction(SIGXFSZ, &action, nullptr);
}

}  // namespace

SignalsWait::SignalsWait() {
    inside = inside + 1;
}

SignalsWait::~SignalsWait() {
    inside = inside - 1;
    if (inside > 0 || waiting == 0) return;
    const int number = waiting;
    waiting = 0;
    handle(number);
}

void watch_signals() {
    static bool is_watching = false;
    if (is_watching) return;
    is_watching = true;
    for (const int number : POLITE) watch(number);
    for (const int number : FAULTS) watch(number);
    for (int number = SIGRTMIN; number <= std::min(SIGRTMAX, NSIG - 1); ++number) watch(number);
    outlive_size_limit();
}

int remove_at_signal(const std::string& file, const std::string& document) {
    const std::string message =
        "sxml: " + document + ": a signal ended the program; the document is as it was before\n";
    for (std::size_t i = 0; i < slots.size(); ++i) {
        Slot& slot = slots[i];
        if (slot.is_used || file.size() >= slot.file.size() ||
            message.size() >= slot.message.size()) {
            continue;
        }
        std::copy_n(file.c_str(), file.size() + 1, slot.file.data());
        std::copy_n(message.c_str(), message.size() + 1, slot.message.data());
        slot.is_used = true;
        return static_cast<int>(i);
    }
    return -1;
}

void forget_at_signal(int slot) {
    if (slot >= 0) slots[static_cast<std::size_t>(slot)].is_used = false;
}

void remove_as_at_signal() {
    remove_files();
}

bool is_ended_by_signal() {
    return is_ending != 0;
}

}  // namespace gnucobol
