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
        // The lowest free number is given: this one.
        if (open("/dev/null", descriptor == STANDARD_INPUT ? O_RDONLY : O_WRONLY) != descriptor) {
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
