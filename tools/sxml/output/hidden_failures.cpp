#include "tools/sxml/output/hidden_failures.h"

#include <cstdlib>
#include <exception>
#include <new>

#include "host/runtime/memory/memory_failure.h"
#include "host/runtime/memory/memory_report.h"
#include "host/runtime/streams.h"
#include "platform/interrupts.h"
#include "tools/sxml/failure.h"

namespace command {

namespace {

void (*tell_exhausted_memory)() = nullptr;

bool is_out_of_memory(const std::exception_ptr& thrown) {
    try {
        if (thrown != nullptr) std::rethrow_exception(thrown);
    } catch (const std::bad_alloc&) {
        return true;
    } catch (...) {
        return false;
    }
    return false;
}

// Libraries allocate before main(), in destructors and in functions that may not throw, where
// nothing can be caught. In the latter, the exception need not have been caught yet; it is
// always of memory.
[[noreturn]] void terminate() {
    const std::exception_ptr caught = std::current_exception();
    const bool is_pending = caught == nullptr && std::uncaught_exceptions() > 0;
    if (!is_pending && !is_out_of_memory(caught)) std::abort();
    report_exhausted_memory();
    platform::remove_interrupted_files();
    std::_Exit(EXIT_FAILED);
}

[[gnu::constructor(101)]] void watch_uncaught_failures() {
    std::set_terminate(terminate);
}

}  // namespace

bool has_memory_failed() {
    static bool has_failed = false;
    has_failed = host::take_memory_failure() || has_failed;
    return has_failed;
}

void check_host() {
    if (has_memory_failed()) throw std::bad_alloc();
    if (const auto failure = host::take_read_failure()) {
        fail_file(failure->file == "-" ? "standard input" : failure->file, failure->error);
    }
}

void report_exhausted_memory() {
    if (tell_exhausted_memory != nullptr) return tell_exhausted_memory();
    say("sxml: ");
    say(host::memory_problem());
    say("\n");
}

void report_exhausted_memory_by(void (*tell)()) {
    tell_exhausted_memory = tell;
}

}  // namespace command
