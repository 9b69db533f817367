// Files and folders that are removed when a signal ends the process.
#pragma once

#include <string>

namespace platform {

struct InterruptEntry;

// While this lives, the file, or the folder with the files in it, is removed when a signal ends the
// process; not when it ends a child that began as a copy of the process.
class RemovedOnInterrupt {
  public:
    RemovedOnInterrupt() = default;
    // The path may be relative to the folder that is current now. Throws std::bad_alloc.
    explicit RemovedOnInterrupt(const std::string& path);
    RemovedOnInterrupt(RemovedOnInterrupt&& other) noexcept;
    RemovedOnInterrupt& operator=(RemovedOnInterrupt&& other) noexcept;
    ~RemovedOnInterrupt();

  private:
    InterruptEntry* entry_ = nullptr;
};

// From now on SIGINT, SIGTERM, SIGHUP and SIGPIPE end the process only after all these files are
// removed; those that the parent process ignores (nohup, say) stay ignored. A write beyond the
// limit on the size of files fails like others (EFBIG) instead of ending the process. Programs
// executed by this process find all signals as they were.
void handle_interrupts();

// Removes all these files, for a program with signal handlers of its own: async-signal-safe.
void remove_interrupted_files();

}  // namespace platform
