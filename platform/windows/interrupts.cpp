#include "platform/interrupts.h"

#include <windows.h>

#include <atomic>
#include <filesystem>
#include <utility>

#include "platform/paths.h"
#include "platform/windows/held_interrupts.h"
#include "platform/windows/system_texts.h"

namespace platform {

// A name in the list. Entries are never released; one that is not in use is taken again. The name
// is complete whenever it is in use.
struct InterruptEntry {
    std::atomic<bool> is_used = false;
    std::wstring path;
    InterruptEntry* next = nullptr;
};

namespace {

// The state of the process: what an interrupt removes.
constinit std::atomic<InterruptEntry*> entries = nullptr;
SRWLOCK lock = SRWLOCK_INIT;

InterruptEntry* unused_entry() {
    for (InterruptEntry* entry = entries; entry != nullptr; entry = entry->next) {
        if (!entry->is_used) return entry;
    }
    auto* entry = new InterruptEntry;
    entry->next = entries;
    entries = entry;
    return entry;
}

// Runs on a thread of the system's. The lock is kept: no file is made between this and the end,
// which comes at once and tells why; the next handler would end as if the run had come through.
BOOL WINAPI end_process(DWORD /*event*/) {
    AcquireSRWLockExclusive(&lock);
    remove_interrupted_files();
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(STATUS_CONTROL_C_EXIT));
    return TRUE;
}

}  // namespace

HeldInterrupts::HeldInterrupts() {
    AcquireSRWLockExclusive(&lock);
}

HeldInterrupts::~HeldInterrupts() {
    ReleaseSRWLockExclusive(&lock);
}

RemovedOnInterrupt::RemovedOnInterrupt(const std::string& path) {
    std::wstring whole = wide_file_name(name_of(std::filesystem::absolute(path_of(path))));
    entry_ = unused_entry();
    entry_->path = std::move(whole);
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

void handle_interrupts() {
    SetConsoleCtrlHandler(end_process, TRUE);
}

void remove_interrupted_files() {
    for (const InterruptEntry* entry = entries; entry != nullptr; entry = entry->next) {
        if (entry->is_used) DeleteFileW(entry->path.c_str());
    }
    // Folders, empty by now.
    for (const InterruptEntry* entry = entries; entry != nullptr; entry = entry->next) {
        if (entry->is_used) RemoveDirectoryW(entry->path.c_str());
    }
}

}  // namespace platform
