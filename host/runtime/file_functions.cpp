// The file functions that the module gets by name.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <string>

#include "host/runtime/module.h"
#include "platform/descriptors.h"

namespace {

constexpr std::size_t COPY_SIZE = std::size_t{64} * 1024;

int check_names(const char* first, const char* second) {
    if (first != nullptr && second != nullptr) return 1;
    errno = EINVAL;
    return 0;
}

// 0 or the error number.
int copy_contents(int source, int target) {
    std::array<char, COPY_SIZE> buffer;
    for (;;) {
        const ssize_t count = platform::read_some(source, buffer.data(), buffer.size());
        if (count < 0) return errno;
        if (count == 0) return 0;
        const int error =
            platform::write_whole(target, buffer.data(), static_cast<std::size_t>(count));
        if (error != 0) return error;
    }
}

// Copies into the new file `temporary` and lets it take the target's place. 0 or the error number.
int copy_and_replace(int source, std::string& temporary, const char* target) {
    struct stat status {};
    if (fstat(source, &status) != 0) return errno;
    const int descriptor = mkstemp(temporary.data());
    if (descriptor < 0) return errno;
    constexpr mode_t permissions = 0777;
    int error = copy_contents(source, descriptor);
    if (error == 0 && fchmod(descriptor, status.st_mode & permissions) != 0) error = errno;
    if (close(descriptor) != 0 && error == 0) error = errno;
    if (error == 0 && std::rename(temporary.c_str(), target) != 0) error = errno;
    if (error != 0) unlink(temporary.c_str());
    return error;
}

}  // namespace

int f_remove(const char* name) {
    return check_names(name, name) != 0 && unlink(name) == 0 ? 1 : 0;
}

int f_rename(const char* old_name, const char* new_name) {
    return check_names(old_name, new_name) != 0 && std::rename(old_name, new_name) == 0 ? 1 : 0;
}

int f_copy(const char* source, const char* target) {
    if (check_names(source, target) == 0) return 0;
    try {
        std::string temporary = std::string(target) + ".XXXXXX";
        const int descriptor = open(source, O_RDONLY | O_CLOEXEC);
        if (descriptor < 0) return 0;
        const int error = copy_and_replace(descriptor, temporary, target);
        close(descriptor);
        errno = error;
        return error == 0 ? 1 : 0;
    } catch (const std::bad_alloc&) {
        errno = ENOMEM;
        return 0;
    }
}
