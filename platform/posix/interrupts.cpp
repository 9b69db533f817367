#include "platform/interrupts.h"

#include <dirent.h>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

#include "platform/interrupt_entries.h"

namespace platform {

namespace {

// Async-signal-safe, as opendir() is not.
void remove_files_in(const char* path) {
    const int folder = open(path, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (folder < 0) return;
    alignas(dirent64) std::array<char, 4096> names{};
    for (;;) {
        const ssize_t size = getdents64(folder, names.data(), names.size());
        if (size <= 0) break;
        for (ssize_t at = 0; at < size;) {
            const auto* const entry = reinterpret_cast<const dirent64*>(names.data() + at);
            unlinkat(folder, entry->d_name, 0);
            at += entry->d_reclen;
        }
    }
    close(folder);
}

// Processes that the same signal ends may be making files in it meanwhile.
void remove_folder(const char* path) {
    constexpr int MOST_TRIES = 10;
    constexpr int PAUSE = 20;  // milliseconds
    for (int i = 0; i < MOST_TRIES && rmdir(path) != 0 && errno == ENOTEMPTY; ++i) {
        if (i > 0) poll(nullptr, 0, PAUSE);
        remove_files_in(path);
    }
    rmdir(path);
}

void remove_files_and_die(int signal_number) {
    remove_interrupted_files();
    // Not SA_RESETHAND: a second signal that comes before this begins would end the process at
    // once.
    std::signal(signal_number, SIG_DFL);
    raise(signal_number);
}

void handle(int signal_number, void (*handler)(int), int flags) {
    struct sigaction present {};
    sigaction(signal_number, nullptr, &present);
    if (present.sa_handler != SIG_DFL) return;
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    sigaction(signal_number, &action, nullptr);
}

}  // namespace

int process_number() {
    return getpid();
}

std::filesystem::path absolute_path(const std::string& path) {
    return std::filesystem::absolute(path);
}

void remove_interrupted_files() {
    const int process = process_number();
    for (const InterruptEntry* entry = interrupt_entries; entry != nullptr; entry = entry->next) {
        if (entry->is_used && entry->owner == process) unlink(entry->path.c_str());
    }
    for (const InterruptEntry* entry = interrupt_entries; entry != nullptr; entry = entry->next) {
        if (entry->is_used && entry->owner == process) remove_folder(entry->path.c_str());
    }
}

void handle_interrupts() {
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
        handle(number, remove_files_and_die, 0);
    }
    handle(
        SIGXFSZ, [](int) {}, SA_RESTART);
}

}  // namespace platform
