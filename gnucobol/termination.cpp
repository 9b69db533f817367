#include "gnucobol/termination.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "gnucobol/signals.h"
#include "host/runtime/memory/memory_report.h"

namespace gnucobol {

namespace {

std::terminate_handler handler_before = nullptr;

// Nothing but exhausted memory makes the libraries used here throw where they may not. Whether it
// was that cannot be asked: the exception need not have been caught yet.
[[noreturn]] void tell() {
    static bool is_ending = false;
    if (std::uncaught_exceptions() == 0 && std::current_exception() == nullptr) {
        if (handler_before != nullptr) handler_before();
        std::abort();
    }
    if (is_ending) _exit(EXIT_FAILURE);
    is_ending = true;
    std::fprintf(stderr, "sxml: %s\n", host::memory_problem());
    remove_as_at_signal();
    std::exit(EXIT_FAILURE);
}

}  // namespace

TerminationTold::TerminationTold() {
    handler_before = std::set_terminate(tell);
}

TerminationTold::~TerminationTold() {
    std::set_terminate(handler_before);
}

}  // namespace gnucobol
