#include "gnucobol/nameless_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>

#include "platform/temporary_files.h"

namespace gnucobol {

int nameless_file(const std::string& folder) {
    constexpr mode_t OWN = 0600;
    if (!folder.empty()) {
        const int descriptor = open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, OWN);
        if (descriptor >= 0) return descriptor;
    }
    std::string name = platform::temporary_folder() + "/sxml-XXXXXX";
    const int descriptor = mkostemp(name.data(), O_CLOEXEC);
    if (descriptor >= 0) unlink(name.c_str());
    return descriptor;
}

std::string name_of_descriptor(int descriptor) {
    return "/proc/self/fd/" + std::to_string(descriptor);
}

}  // namespace gnucobol
