// The file functions that the module gets by name.
#include <array>
#include <cerrno>
#include <new>
#include <string>

#include "host/runtime/memory/memory_failure.h"
#include "host/runtime/module.h"
#include "platform/descriptors.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "platform/temporary_files.h"

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

// 1, or 0 with the error number in errno.
int outcome(int error) {
    if (error == 0) return 1;
    errno = error;
    return 0;
}

// Copies into a new file beside the target, which takes the target's place. 0 or the error number.
int copy_and_replace(int source, const std::string& target) {
    auto temporary = platform::TemporaryFile::create(platform::folder_of(target),
                                                     platform::file_name_of(target));
    if (!temporary) return errno;
    const std::string& name = temporary->name();
    const int descriptor = platform::open_to_write(name.c_str());
    if (descriptor < 0) return errno;
    int error = copy_contents(source, descriptor);
    if (error == 0) error = platform::copy_permissions(source, descriptor);
    const int close_error = platform::close_descriptor(descriptor);
    if (error == 0) error = close_error;
    return error == 0 ? temporary->rename_to(target) : error;
}

}  // namespace

int f_remove(const char* name) {
    return check_names(name, name) != 0 ? outcome(platform::remove_file(name)) : 0;
}

int f_rename(const char* old_name, const char* new_name) {
    return check_names(old_name, new_name) != 0 ? outcome(platform::rename_file(old_name, new_name))
                                                : 0;
}

int f_copy(const char* source, const char* target) {
    if (check_names(source, target) == 0) return 0;
    const int descriptor = platform::open_to_read(source);
    if (descriptor < 0) return 0;
    int error = ENOMEM;
    try {
        error = copy_and_replace(descriptor, target);
    } catch (const std::bad_alloc&) {
        host::note_memory_failure();
    }
    platform::close_descriptor(descriptor);
    return outcome(error);
}
