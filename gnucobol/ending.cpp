#include "gnucobol/ending.h"

#include <pthread.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "gnucobol/runtime.h"
#include "gnucobol/signals.h"

namespace gnucobol {

namespace {

enum class Ending { unknown, meant, error };

bool (*finish_documents)(bool) = nullptr;
bool stops = false;      // STOP RUN has been reached
bool has_error = false;  // the runtime has told of an error that it is about to end the program for
Ending ending = Ending::unknown;

bool is_in_program() {
    const cob_global* const runtime = cob_get_global_ptr();
    return runtime != nullptr && runtime->cob_current_module != nullptr;
}

// The runtime calls it when the program ends, also after an error.
int exit_procedure() {
    if (ending == Ending::unknown) {
        const bool is_meant = stops || !is_in_program() || !has_error;
        ending = is_meant ? Ending::meant : Ending::error;
    }
    return 0;
}

// The runtime runs it at an error, and then ends the program.
int error_procedure(char* /*message*/) {
    has_error = true;
    return 1;
}

// Calls a library routine that takes the number of its parameters from the runtime.
template <class Routine>
void call_routine(Routine routine, unsigned char what, const void* procedure) {
    cob_global* const runtime = cob_get_global_ptr();
    const int parameters = runtime->cob_call_params;
    runtime->cob_call_params = 2;
    routine(&what, procedure);
    runtime->cob_call_params = parameters;
}

constexpr unsigned char INSTALL = 0;
constexpr unsigned char REMOVE = 1;

void install_error_procedure() {
    static int (*procedure)(char*) = error_procedure;
    call_routine(cob_sys_error_proc, REMOVE, &procedure);
    call_routine(cob_sys_error_proc, INSTALL, &procedure);
}

void at_exit(int status, void* /*unused*/) {
    // A C program may end without telling the runtime.
    const bool is_meant = ending == Ending::meant ||
                          (ending == Ending::unknown && !is_ended_by_signal() && !is_in_program());
    if (finish_documents(is_meant) || status != EXIT_SUCCESS) return;
    std::fflush(nullptr);
    _exit(EXIT_FAILURE);
}

}  // namespace

void watch_ending(const EndingHandlers& handlers) {
    if (finish_documents == nullptr) {
        static int (*procedure)() = exit_procedure;
        finish_documents = handlers.finish;
        on_exit(at_exit, nullptr);
        pthread_atfork(nullptr, nullptr, handlers.leave_to_parent);
        call_routine(cob_sys_exit_proc, INSTALL, &procedure);
        install_error_procedure();
    }
    survive_errors();
}

void survive_errors() {
    if (!has_error) return;
    // The program has survived the error. The runtime has forgotten the procedures that it called.
    has_error = false;
    install_error_procedure();
}

void note_stop_run() {
    stops = true;
}

void note_error_procedure() {
    if (finish_documents != nullptr) install_error_procedure();
}

}  // namespace gnucobol
