#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "tools/sxml/errors.h"
#include "tools/sxml/record_file.h"

namespace command {

ByteSource::ByteSource(const std::string& name)
    : name_(name == "-" ? "standard input" : name),
      descriptor_(name == "-" ? STDIN_FILENO : open(name.c_str(), O_RDONLY | O_CLOEXEC)) {
    if (descriptor_ < 0) fail_file(name_, errno);
}

ByteSource::~ByteSource() {
    if (descriptor_ != STDIN_FILENO) close(descriptor_);
}

std::size_t ByteSource::read(std::uint8_t* buffer, std::size_t size) {
    std::size_t filled = 0;
    while (filled < size) {
        const ssize_t count = ::read(descriptor_, buffer + filled, size - filled);
        if (count == 0) break;
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) fail_file(name_, errno);
        filled += static_cast<std::size_t>(count);
    }
    return filled;
}

std::optional<std::uint64_t> ByteSource::size() const {
    struct stat status = {};
    if (fstat(descriptor_, &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    return static_cast<std::uint64_t>(status.st_size);
}

bool ByteSource::is_same_file(const std::string& other) const {
    struct stat own = {};
    struct stat others = {};
    return fstat(descriptor_, &own) == 0 && stat(other.c_str(), &others) == 0 &&
           S_ISREG(own.st_mode) && own.st_dev == others.st_dev && own.st_ino == others.st_ino;
}

}  // namespace command
