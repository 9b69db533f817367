#include "platform/files.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace platform {

namespace {

FileState state_from(const struct stat& status) {
    FileKind kind = FileKind::other;
    if (S_ISREG(status.st_mode)) kind = FileKind::regular;
    if (S_ISDIR(status.st_mode)) kind = FileKind::folder;
    return {kind, {status.st_dev, status.st_ino}, static_cast<std::uint64_t>(status.st_size)};
}

}  // namespace

std::optional<FileState> state_of(const std::string& name) {
    struct stat status {};
    if (stat(name.c_str(), &status) != 0) return std::nullopt;
    return state_from(status);
}

std::optional<FileState> state_of(int descriptor) {
    struct stat status {};
    if (fstat(descriptor, &status) != 0) return std::nullopt;
    return state_from(status);
}

int cut_file(int descriptor, std::uint64_t length) {
    return ftruncate(descriptor, static_cast<off_t>(length)) == 0 ? 0 : errno;
}

void remove_file(const std::string& name) {
    unlink(name.c_str());
}

}  // namespace platform
