#include "platform/descriptors.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>

namespace platform {

namespace {

// True when the call is to be made again: it was interrupted, or the descriptor does not wait by
// itself and is ready now.
bool try_again(int descriptor, short events) {
    if (errno == EINTR) return true;
    if (errno != EAGAIN && errno != EWOULDBLOCK) return false;
    pollfd wait{descriptor, events, 0};
    return poll(&wait, 1, -1) >= 0 || errno == EINTR;
}

int open_whatever_happens(const char* name, int flags) {
    constexpr mode_t everybody = 0666;  // less what the process's mask takes away
    for (;;) {
        const int descriptor = open(name, flags | O_CLOEXEC, everybody);
        if (descriptor >= 0 || errno != EINTR) return descriptor;
    }
}

}  // namespace

int open_to_read(const char* name) {
    return open_whatever_happens(name, O_RDONLY);
}

int open_to_write(const char* name) {
    return open_whatever_happens(name, O_WRONLY | O_CREAT | O_TRUNC);
}

// An interrupted close has closed the descriptor, too.
int close_descriptor(int descriptor) {
    return close(descriptor) == 0 || errno == EINTR ? 0 : errno;
}

int write_whole(int descriptor, const char* data, std::size_t size) {
    while (size > 0) {
        const ssize_t written = write(descriptor, data, size);
        if (written >= 0) {
            data += written;
            size -= static_cast<std::size_t>(written);
        } else if (!try_again(descriptor, POLLOUT)) {
            return errno;
        }
    }
    return 0;
}

ssize_t read_some(int descriptor, char* buffer, std::size_t size) {
    for (;;) {
        const ssize_t count = read(descriptor, buffer, size);
        if (count >= 0 || !try_again(descriptor, POLLIN)) return count;
    }
}

}  // namespace platform
