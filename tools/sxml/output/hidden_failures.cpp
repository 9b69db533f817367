#include "tools/sxml/output/hidden_failures.h"

#include <cstdlib>
#include <exception>
#include <new>

#include "host/runtime/memory/memory_failure.h"
#include "host/runtime/memory/memory_report.h"
#include "host/runtime/streams.h"
#include "tools/sxml/failure.h"

namespace command {

namespace {

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

// Libraries allocate before main() and in destructors, where nothing can be caught.
[[noreturn]] void terminate() {
    if (!is_out_of_memory(std::current_exception())) std::abort();
    report_exhausted_memory();
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
    say("sxml: ");
    say(host::memory_problem());
    say("\n");
}

}  // namespace command
