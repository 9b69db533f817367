#include "platform/descriptors.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
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

int close_and_fail(int descriptor, int error) {
    close(descriptor);
    errno = error;
    return -1;
}

}  // namespace

int open_to_read(const char* name) {
    const int descriptor = open_whatever_happens(name, O_RDONLY);
    struct stat status {};
    const bool is_folder =
        descriptor >= 0 && fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode);
    return is_folder ? close_and_fail(descriptor, EISDIR) : descriptor;
}

int open_to_write(const char* name) {
    const int descriptor = open_whatever_happens(name, O_WRONLY | O_CREAT);
    struct stat status {};
    if (descriptor < 0 || fstat(descriptor, &status) != 0) return descriptor;
    // A new file is not cut: some file systems take that for a rewrite of important data, and
    // closing it waits for the disk.
    const bool is_old = S_ISREG(status.st_mode) && status.st_size > 0;
    if (!is_old || ftruncate(descriptor, 0) == 0) return descriptor;
    return close_and_fail(descriptor, errno);
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

std::optional<std::uint64_t> output_position(int descriptor) {
    struct stat status {};
    if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    const int flags = fcntl(descriptor, F_GETFL);
    if (flags < 0 || (flags & O_APPEND) != 0) return std::nullopt;
    const off_t position = lseek(descriptor, 0, SEEK_CUR);
    if (position < 0) return std::nullopt;
    return static_cast<std::uint64_t>(position);
}

int move_to(int descriptor, std::uint64_t position) {
    return lseek(descriptor, static_cast<off_t>(position), SEEK_SET) >= 0 ? 0 : errno;
}

}  // namespace platform
