#include "platform/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

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

std::FILE* open_to_append(const std::string& name) {
    return std::fopen(name.c_str(), "ae");
}

int empty_file(std::FILE* file) {
    return cut_file(fileno(file), 0);
}

bool means_no_space(int error) {
    return error == ENOSPC || error == EDQUOT || error == EFBIG;
}

int remove_file(const char* name) {
    return unlink(name) == 0 ? 0 : errno;
}

int remove_empty_folder(const char* name) {
    return rmdir(name) == 0 ? 0 : errno;
}

int rename_file(const char* old_name, const char* new_name) {
    return std::rename(old_name, new_name) == 0 ? 0 : errno;
}

int copy_permissions(int from, int to) {
    constexpr mode_t permissions = 0777;
    struct stat status {};
    const bool is_done = fstat(from, &status) == 0 && fchmod(to, status.st_mode & permissions) == 0;
    return is_done ? 0 : errno;
}

int flush_file(const std::string& name) {
    const int descriptor = open(name.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) return errno;
    const int error = fsync(descriptor) == 0 ? 0 : errno;
    close(descriptor);
    return error == EINVAL || error == ENOTSUP || error == EROFS ? 0 : error;
}

void flush_folder(const std::string& name) {
    flush_file(name);
}

const char* null_device() {
    return "/dev/null";
}

}  // namespace platform
