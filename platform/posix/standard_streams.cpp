#include "platform/standard_streams.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <initializer_list>

#include "platform/descriptors.h"

namespace platform {

bool open_missing_standard_streams() {
    for (const int descriptor : {STANDARD_INPUT, STANDARD_OUTPUT, STANDARD_ERROR}) {
        if (fcntl(descriptor, F_GETFD) >= 0) continue;
        // The lowest free number is given: this one. Reading from a closed stream, or writing to
        // it, fails as it would otherwise, except for messages.
        const int mode = descriptor == STANDARD_OUTPUT ? O_RDONLY : O_WRONLY;
        if (open("/dev/null", mode) != descriptor) {
            return false;
        }
    }
    return true;
}

bool is_terminal(int descriptor) {
    return isatty(descriptor) != 0;
}

std::optional<int> terminal_width(int descriptor) {
    winsize size{};
    if (ioctl(descriptor, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return std::nullopt;
    return size.ws_col;
}

}  // namespace platform
