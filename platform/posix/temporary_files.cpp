#include "platform/temporary_files.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "platform/environment.h"

namespace platform {

namespace {

// While this lives, no signal comes to this thread between making a file and noting that it is to
// be removed.
class HeldSignals {
  public:
    HeldSignals() {
        sigset_t all;
        sigfillset(&all);
        // Raised by what this thread itself does; held back, they would end the process.
        for (const int own : {SIGBUS, SIGFPE, SIGILL, SIGSEGV, SIGSYS, SIGTRAP}) {
            sigdelset(&all, own);
        }
        pthread_sigmask(SIG_BLOCK, &all, &before_);
    }
    ~HeldSignals() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;

  private:
    sigset_t before_{};
};

}  // namespace

std::string temporary_folder() {
    const char* folder = trusted_environment_variable("TMPDIR");
    return folder != nullptr && *folder != '\0' ? folder : "/tmp";
}

std::optional<TemporaryFile> TemporaryFile::create(const std::string& folder,
                                                   const std::string& stem) {
    constexpr std::size_t LONGEST_STEM = 200;  // leaves room within the 255 bytes of a file name
    std::string name = folder + "/." + stem.substr(0, LONGEST_STEM) + ".XXXXXX";
    const HeldSignals held;
    const int descriptor = mkostemp(name.data(), O_CLOEXEC);
    if (descriptor < 0) return std::nullopt;
    close(descriptor);
    try {
        return TemporaryFile(name);
    } catch (...) {
        unlink(name.c_str());
        throw;
    }
}

TemporaryFile::TemporaryFile(std::string name) : name_(std::move(name)), removed_(name_) {}

TemporaryFile::TemporaryFile(TemporaryFile&& other) noexcept
    : name_(std::exchange(other.name_, {})), removed_(std::move(other.removed_)) {}

TemporaryFile::~TemporaryFile() {
    if (!name_.empty()) unlink(name_.c_str());
}

std::string TemporaryFile::keep() {
    removed_ = {};
    return std::exchange(name_, {});
}

int TemporaryFile::rename_to(const std::string& target) {
    if (std::rename(name_.c_str(), target.c_str()) != 0) return errno;
    name_.clear();
    removed_ = {};
    return 0;
}

std::optional<TemporaryFolder> TemporaryFolder::create() {
    std::string name = temporary_folder() + "/sxml.XXXXXX";
    const HeldSignals held;
    if (mkdtemp(name.data()) == nullptr) return std::nullopt;
    try {
        return TemporaryFolder(name);
    } catch (...) {
        rmdir(name.c_str());
        throw;
    }
}

TemporaryFolder::TemporaryFolder(std::string name) : name_(std::move(name)), removed_(name_) {}

TemporaryFolder::TemporaryFolder(TemporaryFolder&& other) noexcept
    : name_(std::exchange(other.name_, {})), removed_(std::move(other.removed_)) {}

TemporaryFolder::~TemporaryFolder() {
    if (!name_.empty()) rmdir(name_.c_str());
}

}  // namespace platform
