#include "platform/windows/system_texts.h"

#include <algorithm>
#include <array>
#include <cerrno>

namespace platform {

namespace {

constexpr std::wstring_view UNLIMITED = L"\\\\?\\";
constexpr std::wstring_view UNLIMITED_SHARE = L"\\\\?\\UNC\\";
constexpr std::size_t USUAL_LIMIT = 240;  // leaves room for the names of temporary files

struct KnownError {
    DWORD error;
    int number;
};

constexpr KnownError KNOWN_ERRORS[] = {{ERROR_FILE_NOT_FOUND, ENOENT},
                                       {ERROR_PATH_NOT_FOUND, ENOENT},
                                       {ERROR_INVALID_NAME, ENOENT},
                                       {ERROR_BAD_PATHNAME, ENOENT},
                                       {ERROR_BAD_NETPATH, ENOENT},
                                       {ERROR_BAD_NET_NAME, ENOENT},
                                       {ERROR_INVALID_DRIVE, ENOENT},
                                       {ERROR_ACCESS_DENIED, EACCES},
                                       {ERROR_SHARING_VIOLATION, EACCES},
                                       {ERROR_LOCK_VIOLATION, EACCES},
                                       {ERROR_WRITE_PROTECT, EROFS},
                                       {ERROR_DISK_FULL, ENOSPC},
                                       {ERROR_HANDLE_DISK_FULL, ENOSPC},
                                       {ERROR_NOT_ENOUGH_MEMORY, ENOMEM},
                                       {ERROR_OUTOFMEMORY, ENOMEM},
                                       {ERROR_FILE_EXISTS, EEXIST},
                                       {ERROR_ALREADY_EXISTS, EEXIST},
                                       {ERROR_BROKEN_PIPE, EPIPE},
                                       {ERROR_NO_DATA, EPIPE},
                                       {ERROR_INVALID_HANDLE, EBADF},
                                       {ERROR_TOO_MANY_OPEN_FILES, EMFILE},
                                       {ERROR_NOT_SAME_DEVICE, EXDEV},
                                       {ERROR_DIR_NOT_EMPTY, ENOTEMPTY},
                                       {ERROR_INVALID_PARAMETER, EINVAL},
                                       {ERROR_NEGATIVE_SEEK, EINVAL},
                                       {ERROR_FILE_TOO_LARGE, EFBIG},
                                       {ERROR_CANT_RESOLVE_FILENAME, ELOOP}};

bool is_number_of_device(std::string_view text) {
    return text.size() == 1 && text[0] >= '1' && text[0] <= '9';
}

}  // namespace

std::wstring wide(std::string_view text) {
    if (text.empty()) return {};
    const int size = static_cast<int>(text.size());
    const int length = MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0);
    std::wstring result(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), size, result.data(), length);
    return result;
}

std::string narrow(std::wstring_view text) {
    if (text.empty()) return {};
    const int size = static_cast<int>(text.size());
    const int length =
        WideCharToMultiByte(CP_UTF8, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<std::size_t>(length), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), size, result.data(), length, nullptr, nullptr);
    return result;
}

std::wstring absolute(const std::wstring& name) {
    const DWORD size = GetFullPathNameW(name.c_str(), 0, nullptr, nullptr);
    std::wstring whole(size, L'\0');
    const DWORD length = GetFullPathNameW(name.c_str(), size, whole.data(), nullptr);
    if (length == 0 || length >= size) return name;
    whole.resize(length);
    return whole;
}

std::wstring wide_file_name(const std::string& name) {
    std::wstring given = wide(name);
    if (given.size() < USUAL_LIMIT || given.starts_with(UNLIMITED)) return given;
    const std::wstring whole = absolute(given);
    if (whole.starts_with(L"\\\\")) return std::wstring(UNLIMITED_SHARE) + whole.substr(2);
    return std::wstring(UNLIMITED) + whole;
}

int error_number(DWORD error) {
    const auto* const found = std::ranges::find(KNOWN_ERRORS, error, &KnownError::error);
    return found != std::end(KNOWN_ERRORS) ? found->number : EIO;
}

bool is_device_name(const std::string& name) {
    constexpr std::array<std::string_view, 6> devices = {"con", "nul",    "prn",
                                                         "aux", "conin$", "conout$"};
    std::string folded = name;
    for (char& c : folded) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    if (std::ranges::find(devices, folded) != devices.end()) return true;
    const std::string_view text = folded;
    return (text.starts_with("com") || text.starts_with("lpt")) &&
           is_number_of_device(text.substr(3));
}

}  // namespace platform
