// Files of Windows as they lie under descriptors.
#pragma once

#include <windows.h>

#include <string>

namespace platform {

// Other programs, and this one, may read, write, rename and remove the file meanwhile.
constexpr DWORD SHARED_WITH_ALL = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// A handle that is closed with its object.
class FileHandle {
  public:
    // Opens as CreateFileW does.
    FileHandle(const std::string& name, DWORD access, DWORD disposition, DWORD flags = 0);
    ~FileHandle();
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;

    bool is_open() const { return handle_ != INVALID_HANDLE_VALUE; }
    HANDLE get() const { return handle_; }
    // Gives the handle to a new descriptor, which closes it. Result: -1 on failure, reason in
    // errno.
    int into_descriptor(int flags);

  private:
    HANDLE handle_;
};

// The handle of a descriptor; INVALID_HANDLE_VALUE for one that is not open.
HANDLE handle_of(int descriptor);

}  // namespace platform
