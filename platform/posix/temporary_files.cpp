#include "platform/temporary_files.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>

#include "platform/environment.h"
#include "platform/files.h"
#include "platform/posix/held_signals.h"

namespace platform {

std::string temporary_folder() {
    const char* folder = trusted_environment_variable("TMPDIR");
    return folder != nullptr && *folder != '\0' ? folder : "/tmp";
}

std::optional<TemporaryFile> TemporaryFile::create(const std::string& folder,
                                                   const std::string& stem) {
    constexpr std::size_t LONGEST_STEM = 200;  // leaves room within the 255 bytes of a file name
    std::string name = folder + "/." + stem.substr(0, LONGEST_STEM) + ".XXXXXX";
    const HeldSignals held;  // until it is noted that it is to be removed
    const int descriptor = mkostemp(name.data(), O_CLOEXEC);
    if (descriptor < 0) return std::nullopt;
    close(descriptor);
    try {
        return TemporaryFile(name);
    } catch (...) {
        remove_file(name.c_str());
        throw;
    }
}

std::optional<TemporaryFolder> TemporaryFolder::create() {
    std::string name = temporary_folder() + "/sxml.XXXXXX";
    const HeldSignals held;
    if (mkdtemp(name.data()) == nullptr) return std::nullopt;
    try {
        return TemporaryFolder(name);
    } catch (...) {
        remove_empty_folder(name.c_str());
        throw;
    }
}

}  // namespace platform
