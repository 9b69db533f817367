// sxml: record files to XML, record layouts, DTDs and schemas, from a shell.

#include <exception>
#include <new>
#include <string>

#include "host/runtime/memory_report.h"
#include "platform/interrupts.h"
#include "platform/standard_streams.h"
#include "tools/sxml/command_line.h"
#include "tools/sxml/errors.h"

int main(int argc, char** argv) {
    if (!platform::open_missing_standard_streams()) return command::EXIT_FAILED;
    platform::handle_interrupts();
    try {
        command::run_command_line(argc, argv);
        return 0;
    } catch (const command::Failure& failure) {
        if (*failure.what() != '\0') command::say("sxml: " + std::string(failure.what()) + "\n");
        return failure.status();
    } catch (const std::bad_alloc&) {
        // Text by text: this must take no memory.
        command::say("sxml: ");
        command::say(host::memory_problem());
        command::say("\n");
    } catch (const std::exception& error) {
        command::say("sxml: " + std::string(error.what()) + "\n");
    }
    return command::EXIT_FAILED;
}
