#include "host/runtime/descriptors.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>

namespace host {

namespace {

// True when the call is to be made again: it was interrupted, or the descriptor does not wait by
// itself and is ready now.
bool try_again(int descriptor, short events) {
    if (errno == EINTR) return true;
    if (errno != EAGAIN && errno != EWOULDBLOCK) return false;
    pollfd wait{descriptor, events, 0};
    return poll(&wait, 1, -1) >= 0 || errno == EINTR;
}

}  // namespace

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

}  // namespace host
