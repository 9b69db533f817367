// sxml: record files to XML, record layouts, DTDs and schemas, from a shell.

#include <exception>
#include <new>
#include <string>

#include "host/runtime/memory/memory_report.h"
#include "host/runtime/trace_control.h"
#include "platform/interrupts.h"
#include "platform/standard_streams.h"
#include "tools/sxml/command_line.h"
#include "tools/sxml/failure.h"
#include "tools/sxml/output/hidden_failures.h"

namespace {

// When memory was exhausted, or an input could not be read, that is the cause of the failure.
int fail(const std::string& message, int status) {
    if (command::has_memory_failed()) {
        command::report_exhausted_memory();
        return command::EXIT_FAILED;
    }
    try {
        command::check_host();
    } catch (const command::Failure& cause) {
        command::say_failure(cause.what());
    }
    if (!message.empty()) command::say_failure(message);
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    if (!platform::open_missing_standard_streams()) return command::EXIT_FAILED;
    platform::handle_interrupts();
    try {
        command::run_command_line(argc, argv);
        command::check_host();
        return host::has_trace_failed() ? command::EXIT_FAILED : 0;
    } catch (const command::Failure& failure) {
        return fail(failure.what(), failure.status());
    } catch (const std::bad_alloc&) {
        command::report_exhausted_memory();
        return command::EXIT_FAILED;
    } catch (const std::exception& error) {
        return fail(error.what(), command::EXIT_FAILED);
    }
}
