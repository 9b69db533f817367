#include "platform/shared_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include "platform/temporary_files.h"

namespace platform {

namespace {

bool read_at(int descriptor, char* data, std::size_t size, std::uint64_t position) {
    while (size > 0) {
        const ssize_t count = pread(descriptor, data, size, static_cast<off_t>(position));
        if (count < 0 && errno == EINTR) continue;
        if (count == 0) errno = EIO;  // the file has been truncated meanwhile
        if (count <= 0) return false;
        data += count;
        size -= static_cast<std::size_t>(count);
        position += static_cast<std::uint64_t>(count);
    }
    return true;
}

}  // namespace

int open_nameless(const std::string& folder) {
    constexpr mode_t OWN = 0600;
    for (const std::string& place : {folder, temporary_folder()}) {
        if (place.empty()) continue;
        const int descriptor = open(place.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, OWN);
        if (descriptor >= 0) return descriptor;
    }
    // On file systems without such files it has a name for a moment.
    const std::optional<TemporaryFile> named = TemporaryFile::create(temporary_folder(), "sxml");
    return named ? open(named->name().c_str(), O_RDWR | O_CLOEXEC) : -1;
}

std::string name_of_descriptor(int descriptor) {
    return "/proc/self/fd/" + std::to_string(descriptor);
}

int copy_bytes(int from, std::uint64_t begin, std::uint64_t end, int to, std::uint64_t position) {
    std::array<char, 65536> piece;
    while (begin < end) {
        const auto size =
            static_cast<std::size_t>(std::min<std::uint64_t>(end - begin, piece.size()));
        if (!read_at(from, piece.data(), size, begin)) return errno;
        if (const int error = write_at(to, piece.data(), size, position); error != 0) return error;
        begin += size;
        position += size;
    }
    return 0;
}

std::optional<NamelessFile> NamelessFile::create() {
    const int descriptor = open_nameless({});
    if (descriptor < 0) return std::nullopt;
    return NamelessFile(descriptor);
}

NamelessFile::NamelessFile(int descriptor)
    : descriptor_(descriptor), name_(name_of_descriptor(descriptor)) {}

NamelessFile::NamelessFile(NamelessFile&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)), name_(std::move(other.name_)) {}

NamelessFile::~NamelessFile() {
    if (descriptor_ >= 0) close(descriptor_);
}

std::optional<std::uint64_t> NamelessFile::size() const {
    struct stat state {};
    if (fstat(descriptor_, &state) != 0) return std::nullopt;
    return static_cast<std::uint64_t>(state.st_size);
}

std::optional<std::string> NamelessFile::end(std::size_t count) const {
    const std::optional<std::uint64_t> whole = size();
    if (!whole) return std::nullopt;
    std::string text(static_cast<std::size_t>(std::min<std::uint64_t>(*whole, count)), '\0');
    if (!read_at(descriptor_, text.data(), text.size(), *whole - text.size())) return std::nullopt;
    return text;
}

int NamelessFile::copy(std::uint64_t begin, std::uint64_t end, int target,
                       std::uint64_t position) const {
    return copy_bytes(descriptor_, begin, end, target, position);
}

int open_to_write_into(const char* name) {
    for (;;) {
        const int descriptor = open(name, O_WRONLY | O_CLOEXEC);
        if (descriptor >= 0 || errno != EINTR) return descriptor;
    }
}

int write_at(int descriptor, const char* data, std::size_t size, std::uint64_t position) {
    while (size > 0) {
        const ssize_t count = pwrite(descriptor, data, size, static_cast<off_t>(position));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return errno;
        data += count;
        size -= static_cast<std::size_t>(count);
        position += static_cast<std::uint64_t>(count);
    }
    return 0;
}

}  // namespace platform
