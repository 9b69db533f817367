#include "platform/replacing.h"

#include <array>
#include <cerrno>
#include <utility>

#include "platform/files.h"
#include "platform/paths.h"
#include "platform/windows/handles.h"
#include "platform/windows/system_texts.h"

namespace platform {

namespace {

bool is_link(const std::string& name) {
    const DWORD attributes = GetFileAttributesW(wide_file_name(name).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES &&
           (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

// Where a link that leads to a file leads to; empty, with the reason in errno, when that is not
// known.
std::string end_of_link(const std::string& name) {
    const FileHandle file(name, FILE_READ_ATTRIBUTES, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS);
    std::array<wchar_t, 32768> path{};
    const DWORD length =
        file.is_open()
            ? GetFinalPathNameByHandleW(file.get(), path.data(), static_cast<DWORD>(path.size()), 0)
            : 0;
    if (length == 0 || length >= path.size()) errno = error_number();
    return length < path.size() ? narrow({path.data(), length}) : std::string();
}

}  // namespace

std::optional<Replacement> Replacement::begin(const std::string& target) {
    if (target == "-" || is_device_name(target)) return Replacement(target);
    const std::string path = is_link(target) ? end_of_link(target) : target;
    if (path.empty()) {
        if (target.empty()) errno = ENOENT;
        return std::nullopt;
    }
    const auto present = state_of(path);
    if (file_name_of(path).empty() || (present && present->kind == FileKind::folder)) {
        errno = present ? EISDIR : ENOENT;
        return std::nullopt;
    }
    Replacement replacement(path);
    if (present && present->kind == FileKind::other) return replacement;
    auto temporary = TemporaryFile::create(folder_of(path), file_name_of(path));
    if (!temporary) return std::nullopt;
    replacement.temporary_.emplace(std::move(*temporary));
    return replacement;
}

}  // namespace platform
