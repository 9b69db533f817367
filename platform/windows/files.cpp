#include "platform/files.h"

#include <fcntl.h>
#include <io.h>

#include <array>
#include <cerrno>
#include <cstring>

#include "platform/windows/handles.h"
#include "platform/windows/system_texts.h"

namespace platform {

namespace {

std::uint64_t joined(DWORD high, DWORD low) {
    return std::uint64_t{high} << 32U | low;
}

// File systems have numbers of 128 bits, of which the usual ones use the lower half, or of 64.
std::optional<FileIdentity> identity_of(HANDLE file) {
    constexpr std::uint64_t multiplier = 0x9E3779B97F4A7C15;
    FILE_ID_INFO identity{};
    if (GetFileInformationByHandleEx(file, FileIdInfo, &identity, sizeof identity) != 0) {
        std::array<std::uint64_t, 2> halves{};
        std::memcpy(halves.data(), &identity.FileId, sizeof halves);
        return FileIdentity{identity.VolumeSerialNumber, halves[0] + halves[1] * multiplier};
    }
    BY_HANDLE_FILE_INFORMATION found{};
    if (GetFileInformationByHandle(file, &found) == 0) return std::nullopt;
    return FileIdentity{found.dwVolumeSerialNumber,
                        joined(found.nFileIndexHigh, found.nFileIndexLow)};
}

std::optional<FileState> state_of_handle(HANDLE file) {
    if (file == INVALID_HANDLE_VALUE) {
        errno = EBADF;
        return std::nullopt;
    }
    if (GetFileType(file) != FILE_TYPE_DISK) return FileState{FileKind::other, {}, 0};
    FILE_STANDARD_INFO found{};
    const auto identity = identity_of(file);
    if (!identity ||
        GetFileInformationByHandleEx(file, FileStandardInfo, &found, sizeof found) == 0) {
        errno = error_number();
        return std::nullopt;
    }
    return FileState{found.Directory != 0 ? FileKind::folder : FileKind::regular, *identity,
                     static_cast<std::uint64_t>(found.EndOfFile.QuadPart)};
}

int outcome(BOOL is_done) {
    return is_done != 0 ? 0 : error_number();
}

}  // namespace

std::optional<FileState> state_of(const std::string& name) {
    if (is_device_name(name)) return FileState{FileKind::other, {}, 0};
    const FileHandle file(name, FILE_READ_ATTRIBUTES, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS);
    if (file.is_open()) return state_of_handle(file.get());
    errno = error_number();
    return std::nullopt;
}

std::optional<FileState> state_of(int descriptor) {
    return state_of_handle(handle_of(descriptor));
}

int cut_file(int descriptor, std::uint64_t length) {
    FILE_END_OF_FILE_INFO end{};
    end.EndOfFile.QuadPart = static_cast<LONGLONG>(length);
    return outcome(
        SetFileInformationByHandle(handle_of(descriptor), FileEndOfFileInfo, &end, sizeof end));
}

std::FILE* open_to_append(const std::string& name) {
    FileHandle file(name, GENERIC_WRITE, OPEN_ALWAYS);
    const int descriptor = file.into_descriptor(_O_WRONLY | _O_APPEND);
    return descriptor >= 0 ? _fdopen(descriptor, "ab") : nullptr;
}

int empty_file(std::FILE* file) {
    return cut_file(_fileno(file), 0);
}

bool means_no_space(int error) {
    return error == ENOSPC || error == EFBIG;
}

int remove_file(const char* name) {
    return outcome(DeleteFileW(wide_file_name(name).c_str()));
}

int remove_empty_folder(const char* name) {
    return outcome(RemoveDirectoryW(wide_file_name(name).c_str()));
}

int rename_file(const char* old_name, const char* new_name) {
    return outcome(MoveFileExW(wide_file_name(old_name).c_str(), wide_file_name(new_name).c_str(),
                               MOVEFILE_REPLACE_EXISTING));
}

// A new file has the permissions of its folder; what an old file has of its own is that it may be
// read only.
int copy_permissions(int from, int to) {
    FILE_BASIC_INFO old_file{};
    if (GetFileInformationByHandleEx(handle_of(from), FileBasicInfo, &old_file, sizeof old_file) ==
        0) {
        return error_number();
    }
    if ((old_file.FileAttributes & FILE_ATTRIBUTE_READONLY) == 0) return 0;
    FILE_BASIC_INFO read_only{};  // zero: times stay what they are
    read_only.FileAttributes = FILE_ATTRIBUTE_READONLY;
    return outcome(
        SetFileInformationByHandle(handle_of(to), FileBasicInfo, &read_only, sizeof read_only));
}

int flush_file(const std::string& name) {
    const FileHandle file(name, GENERIC_WRITE, OPEN_EXISTING);
    return file.is_open() && FlushFileBuffers(file.get()) != 0 ? 0 : error_number();
}

// Windows does so by itself.
void flush_folder(const std::string& /*name*/) {}

const char* null_device() {
    return "NUL";
}

}  // namespace platform
