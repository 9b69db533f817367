#include "platform/windows/handles.h"

#include <fcntl.h>
#include <io.h>

#include <cerrno>
#include <cstdint>
#include <utility>

#include "platform/windows/system_texts.h"

namespace platform {

FileHandle::FileHandle(const std::string& name, DWORD access, DWORD disposition, DWORD flags)
    : handle_(CreateFileW(wide_file_name(name).c_str(), access, SHARED_WITH_ALL, nullptr,
                          disposition, flags | FILE_ATTRIBUTE_NORMAL, nullptr)) {}

FileHandle::~FileHandle() {
    if (is_open()) CloseHandle(handle_);
}

int FileHandle::into_descriptor(int flags) {
    if (!is_open()) {
        errno = error_number();
        return -1;
    }
    const int descriptor =
        _open_osfhandle(reinterpret_cast<std::intptr_t>(handle_), flags | _O_BINARY | _O_NOINHERIT);
    if (descriptor >= 0) handle_ = INVALID_HANDLE_VALUE;
    return descriptor;
}

// Negative numbers other than -1 stand for a standard stream that the process does not have.
HANDLE handle_of(int descriptor) {
    const std::intptr_t handle = _get_osfhandle(descriptor);
    return handle < 0 ? INVALID_HANDLE_VALUE : reinterpret_cast<HANDLE>(handle);
}

}  // namespace platform
