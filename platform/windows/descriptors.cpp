#include "platform/descriptors.h"

#include <fcntl.h>
#include <io.h>

#include <algorithm>
#include <cerrno>
#include <string>

#include "platform/files.h"
#include "platform/windows/handles.h"
#include "platform/windows/system_texts.h"

namespace platform {

namespace {

constexpr std::size_t MOST_AT_ONCE = std::size_t{1} << 24;

bool is_folder(const std::string& name) {
    const auto state = state_of(name);
    return state && state->kind == FileKind::folder;
}

// Windows does not open folders and says that access is denied.
int open_file(const std::string& name, DWORD access, DWORD disposition, int flags) {
    FileHandle file(name, access, disposition);
    const int descriptor = file.into_descriptor(flags);
    if (descriptor >= 0 || errno != EACCES) return descriptor;
    errno = is_folder(name) ? EISDIR : EACCES;
    return -1;
}

}  // namespace

int open_to_read(const char* name) {
    return open_file(name, GENERIC_READ, OPEN_EXISTING, _O_RDONLY);
}

int open_to_write(const char* name) {
    const int descriptor = open_file(name, GENERIC_WRITE, OPEN_ALWAYS, _O_WRONLY);
    const auto state = descriptor >= 0 ? state_of(descriptor) : std::nullopt;
    if (!state || state->kind != FileKind::regular || state->size == 0) return descriptor;
    const int error = cut_file(descriptor, 0);
    if (error == 0) return descriptor;
    _close(descriptor);
    errno = error;
    return -1;
}

int close_descriptor(int descriptor) {
    return _close(descriptor) == 0 ? 0 : errno;
}

// Past the C runtime, which would change line ends in descriptors of other programs' making.
int write_whole(int descriptor, const char* data, std::size_t size) {
    const HANDLE file = handle_of(descriptor);
    while (size > 0) {
        const auto part = static_cast<DWORD>(std::min(size, MOST_AT_ONCE));
        DWORD written = 0;
        if (WriteFile(file, data, part, &written, nullptr) == 0) return error_number();
        if (written == 0) return ENOSPC;
        data += written;
        size -= written;
    }
    return 0;
}

ssize_t read_some(int descriptor, char* buffer, std::size_t size) {
    const auto part = static_cast<DWORD>(std::min(size, MOST_AT_ONCE));
    DWORD count = 0;
    if (ReadFile(handle_of(descriptor), buffer, part, &count, nullptr) != 0) return count;
    const DWORD error = GetLastError();
    if (error == ERROR_BROKEN_PIPE || error == ERROR_HANDLE_EOF) return 0;  // the writer is gone
    errno = error_number(error);
    return -1;
}

// Nothing tells whether a stream that was handed to the process appends, so those are never moved.
std::optional<std::uint64_t> output_position(int descriptor) {
    const HANDLE file = handle_of(descriptor);
    if (descriptor <= STANDARD_ERROR || GetFileType(file) != FILE_TYPE_DISK) return std::nullopt;
    LARGE_INTEGER position{};
    if (SetFilePointerEx(file, {}, &position, FILE_CURRENT) == 0) return std::nullopt;
    return static_cast<std::uint64_t>(position.QuadPart);
}

int move_to(int descriptor, std::uint64_t position) {
    LARGE_INTEGER target{};
    target.QuadPart = static_cast<LONGLONG>(position);
    const BOOL is_done = SetFilePointerEx(handle_of(descriptor), target, nullptr, FILE_BEGIN);
    return is_done != 0 ? 0 : error_number();
}

}  // namespace platform
