#include "platform/interrupts.h"

#include <windows.h>

#include "platform/interrupt_entries.h"
#include "platform/paths.h"
#include "platform/windows/console.h"
#include "platform/windows/held_interrupts.h"
#include "platform/windows/system_texts.h"

namespace platform {

namespace {

SRWLOCK lock = SRWLOCK_INIT;

void remove_files_in(const std::filesystem::path& folder) {
    const DWORD attributes = GetFileAttributesW(folder.c_str());
    const bool is_folder = attributes != INVALID_FILE_ATTRIBUTES &&
                           (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 &&
                           (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0;
    if (!is_folder) return;
    WIN32_FIND_DATAW found{};
    const HANDLE search = FindFirstFileW((folder / L"*").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return;
    do {
        DeleteFileW((folder / found.cFileName).c_str());
    } while (FindNextFileW(search, &found) != 0);
    FindClose(search);
}

// Runs on a thread of the system's. The lock is kept: no file is made between this and the end,
// which comes at once and tells why; the next handler would end as if the run had come through.
BOOL WINAPI end_process(DWORD /*event*/) {
    AcquireSRWLockExclusive(&lock);
    remove_interrupted_files();
    restore_console();  // nothing that is to run at the end does
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

int process_number() {
    return static_cast<int>(GetCurrentProcessId());
}

std::filesystem::path absolute_path(const std::string& path) {
    return wide_file_name(absolute_name(path));
}

void handle_interrupts() {
    SetConsoleCtrlHandler(end_process, TRUE);
}

void remove_interrupted_files() {
    for (const InterruptEntry* entry = interrupt_entries; entry != nullptr; entry = entry->next) {
        if (entry->is_used) DeleteFileW(entry->path.c_str());
    }
    for (const InterruptEntry* entry = interrupt_entries; entry != nullptr; entry = entry->next) {
        if (!entry->is_used) continue;
        remove_files_in(entry->path);
        RemoveDirectoryW(entry->path.c_str());
    }
}

}  // namespace platform
