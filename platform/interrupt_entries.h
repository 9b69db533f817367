// The list of what a signal removes: the only state of the process here.
#pragma once

#include <atomic>
#include <filesystem>
#include <string>

namespace platform {

// A path in the list. Entries are never released, so that a signal handler may go through the list
// at any time; one that is not in use is taken again. The path is complete whenever it is in use.
struct InterruptEntry {
    std::atomic<bool> is_used = false;
    std::filesystem::path path;
    int owner = 0;
    InterruptEntry* next = nullptr;
};

extern std::atomic<InterruptEntry*> interrupt_entries;

// The number of this process; async-signal-safe.
int process_number();
// An absolute path as the system's functions take it. Throws std::bad_alloc.
std::filesystem::path absolute_path(const std::string& path);

}  // namespace platform
