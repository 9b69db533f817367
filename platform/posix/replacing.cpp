#include "platform/replacing.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <utility>

namespace platform {

namespace {

namespace fs = std::filesystem;

// Set-user-ID and similar bits are not permissions: they would be passed to a new owner.
constexpr mode_t PERMISSIONS = 0777;
constexpr mode_t GROUP = 0070;
constexpr mode_t OTHERS = 0007;

fs::path folder_of(const fs::path& path) {
    return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

// What a name leads to: a path without links, or the number of one of the process's descriptors.
struct Destination {
    fs::path path;
    std::optional<std::string> descriptor;
};

// True for a link that its owner may have placed to mislead others, by the kernel's rule for
// protected links.
bool is_trap(const fs::path& link) {
    struct stat own {};
    struct stat folder {};
    if (lstat(link.c_str(), &own) != 0 || stat(folder_of(link).c_str(), &folder) != 0) return false;
    const bool is_open_to_all = (folder.st_mode & S_ISVTX) != 0 && (folder.st_mode & S_IWOTH) != 0;
    return is_open_to_all && own.st_uid != geteuid() && own.st_uid != folder.st_uid;
}

// Follows links, whether there is a file at their end or not. Nothing, with the reason in errno.
std::optional<Destination> follow_links(const std::string& name) {
    constexpr int MOST_LINKS = 40;
    const fs::path descriptors = "/proc/" + std::to_string(getpid()) + "/fd";
    fs::path path = name;
    std::error_code error;
    for (int links = 0; links < MOST_LINKS; ++links) {
        if (!fs::is_symlink(path, error)) return Destination{path, {}};
        // The text of these links is not a path that can be followed.
        const fs::path folder = fs::canonical(folder_of(path), error);
        if (error) break;
        if (folder == descriptors) {
            return Destination{path, path.filename().string()};
        }
        if (is_trap(path)) {
            errno = EACCES;
            return std::nullopt;
        }
        const fs::path next = fs::read_symlink(path, error);
        if (error) break;
        path = path.parent_path() / next;
    }
    errno = error ? error.value() : ELOOP;
    return std::nullopt;
}

mode_t creation_mask() {
    const mode_t mask = umask(0);
    umask(mask);
    return mask;
}

// Gives a new file owner, group and permissions of the old one (null: those of any new file). Where
// the group is another one it gets no more than everybody had.
void take_over(const std::string& file, const struct stat* old) {
    const int descriptor = open(file.c_str(), O_WRONLY | O_CLOEXEC);
    if (descriptor < 0) return;
    mode_t mode = 0666 & ~creation_mask();
    if (old != nullptr) {
        mode = old->st_mode & PERMISSIONS;
        const bool is_given = fchown(descriptor, old->st_uid, old->st_gid) == 0;
        struct stat present {};
        if (!is_given && fchown(descriptor, static_cast<uid_t>(-1), old->st_gid) != 0 &&
            fstat(descriptor, &present) == 0 && present.st_gid != old->st_gid) {
            mode &= ~GROUP | (mode & OTHERS) << 3U;
        }
    }
    fchmod(descriptor, mode);
    close(descriptor);
}

}  // namespace

std::optional<Replacement> Replacement::begin(const std::string& target) {
    if (target == "-") return Replacement(target);
    const std::optional<Destination> destination = follow_links(target);
    if (!destination) return std::nullopt;
    if (destination->descriptor) {
        return Replacement(destination->descriptor == "1" ? "-" : target);
    }
    const fs::path& path = destination->path;
    struct stat present {};
    const bool exists = stat(path.c_str(), &present) == 0;
    if (!path.has_filename() || (exists && S_ISDIR(present.st_mode))) {
        errno = exists ? EISDIR : ENOENT;
        return std::nullopt;
    }
    Replacement replacement(path.string());
    if (exists && !S_ISREG(present.st_mode)) return replacement;
    auto temporary = TemporaryFile::create(folder_of(path).string(), path.filename().string());
    if (!temporary) return std::nullopt;
    take_over(temporary->name(), exists ? &present : nullptr);
    replacement.temporary_.emplace(std::move(*temporary));
    return replacement;
}

}  // namespace platform
