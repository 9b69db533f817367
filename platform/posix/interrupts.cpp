#include "platform/interrupts.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <memory>
#include <utility>

namespace platform {

// A name in the list. Entries are never released, so that a signal handler may go through the list
// at any time; one that is not in use is taken again. The name is complete whenever it is in use.
struct InterruptEntry {
    std::atomic<bool> is_used = false;
    std::string path;
    pid_t owner = 0;
    InterruptEntry* next = nullptr;
};

namespace {

// The state of the process: what a signal removes.
constinit std::atomic<InterruptEntry*> entries = nullptr;
static_assert(std::atomic<InterruptEntry*>::is_always_lock_free &&
              std::atomic<bool>::is_always_lock_free);

InterruptEntry* unused_entry() {
    for (InterruptEntry* entry = entries; entry != nullptr; entry = entry->next) {
        if (!entry->is_used) return entry;
    }
    auto* entry = new InterruptEntry;
    entry->next = entries;
    entries = entry;
    return entry;
}

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

// Another process may be making a file in it meanwhile.
void remove_folder(const char* path) {
    constexpr int MOST_TRIES = 3;
    for (int i = 0; i < MOST_TRIES && rmdir(path) != 0 && errno == ENOTEMPTY; ++i) {
        remove_files_in(path);
    }
    rmdir(path);
}

void remove_files_and_die(int signal_number) {
    remove_interrupted_files();
    // SA_RESETHAND has restored the default action, so this ends the process with the signal.
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

RemovedOnInterrupt::RemovedOnInterrupt(const std::string& path) {
    std::string whole = std::filesystem::absolute(path).string();
    entry_ = unused_entry();
    entry_->path = std::move(whole);
    entry_->owner = getpid();
    entry_->is_used = true;
}

RemovedOnInterrupt::RemovedOnInterrupt(RemovedOnInterrupt&& other) noexcept
    : entry_(std::exchange(other.entry_, nullptr)) {}

RemovedOnInterrupt& RemovedOnInterrupt::operator=(RemovedOnInterrupt&& other) noexcept {
    std::swap(entry_, other.entry_);
    return *this;
}

RemovedOnInterrupt::~RemovedOnInterrupt() {
    if (entry_ != nullptr) entry_->is_used = false;
}

void remove_interrupted_files() {
    const pid_t process = getpid();
    for (const InterruptEntry* entry = entries; entry != nullptr; entry = entry->next) {
        if (entry->is_used && entry->owner == process) unlink(entry->path.c_str());
    }
    for (const InterruptEntry* entry = entries; entry != nullptr; entry = entry->next) {
        if (entry->is_used && entry->owner == process) remove_folder(entry->path.c_str());
    }
}

void handle_interrupts() {
    constexpr int once = static_cast<int>(SA_RESETHAND);
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
        handle(number, remove_files_and_die, once);
    }
    handle(
        SIGXFSZ, [](int) {}, SA_RESTART);
}

}  // namespace platform
