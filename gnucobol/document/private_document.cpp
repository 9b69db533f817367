#include "gnucobol/document/private_document.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <new>
#include <system_error>
#include <utility>

#include "gnucobol/signals.h"
#include "platform/shared_files.h"

namespace gnucobol {

namespace {

namespace fs = std::filesystem;

constexpr mode_t ANYONE = 0666;
constexpr mode_t PERMISSIONS = 0777;

bool is_done(const Result& result) {
    return result.status == Status::done;
}

// A pipe, a device, or a descriptor under a name, whatever it is of.
bool is_no_regular_file(const std::string& name) {
    struct stat info {};
    // Regular files may be in /dev/shm.
    if (name.starts_with("/dev/fd/") || name.starts_with("/dev/std")) return true;
    if (name.starts_with("/proc/")) return true;
    return stat(name.c_str(), &info) == 0 && !S_ISREG(info.st_mode);
}

Result refuse(const std::error_code& error) {
    if (error == std::errc::not_enough_memory) throw std::bad_alloc();
    return refusal(error.value());
}

bool is_missing(const std::error_code& error) {
    return error == std::errc::no_such_file_or_directory || error == std::errc::not_a_directory;
}

// The file that the name leads to, through links, whether it is there or not; or why that cannot
// be found out.
std::variant<std::string, Result> without_links(const std::string& name) {
    constexpr int MOST_LINKS = 40;
    fs::path path = name;
    std::error_code error;
    for (int links = 0;; ++links) {
        const fs::path next = fs::read_symlink(path, error);
        if (error) break;
        if (links == MOST_LINKS) return refusal(ELOOP);
        path = next.is_absolute() ? next : path.parent_path() / next;
    }
    const bool is_no_link = error == std::errc::invalid_argument || is_missing(error);
    if (!is_no_link) return refuse(error);
    const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
    const fs::path real = fs::canonical(folder, error);
    if (!error) return (real / path.filename()).string();
    if (is_missing(error)) return path.string();
    return refuse(error);
}

std::string private_name(const std::string& target) {
    const fs::path path = target;
    return (path.parent_path() / ("." + path.filename().string() + ".part")).string();
}

bool lock(int descriptor) {
    struct flock request {};
    request.l_type = F_WRLCK;
    request.l_whence = SEEK_SET;
    return fcntl(descriptor, F_OFD_SETLK, &request) == 0;
}

bool is_locked(const std::string& file) {
    const int descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (descriptor < 0) return false;
    struct flock request {};
    request.l_type = F_WRLCK;
    request.l_whence = SEEK_SET;
    const bool is_held = fcntl(descriptor, F_OFD_GETLK, &request) == 0 && request.l_type != F_UNLCK;
    close(descriptor);
    return is_held;
}

// Whether the name still leads to the open file: another writer may have renamed it meanwhile.
bool is_named(int descriptor, const std::string& name) {
    struct stat held {};
    struct stat named {};
    return fstat(descriptor, &held) == 0 && lstat(name.c_str(), &named) == 0 &&
           held.st_ino == named.st_ino && held.st_dev == named.st_dev;
}

// Why a private file could not be opened.
Result refuse_private_file(const std::string& name, int error) {
    struct stat info {};
    if ((error == EACCES || error == EPERM) && lstat(name.c_str(), &info) == 0) {
        return {Status::in_use, name +
                                    " is there and belongs to another user, who is writing the "
                                    "document or has been stopped; then remove it"};
    }
    return refusal(error);
}

}  // namespace

PrivateDocument::PrivateDocument(PrivateDocument&& other) noexcept
    : target_(std::move(other.target_)),
      name_(std::move(other.name_)),
      has_name_(std::exchange(other.has_name_, false)),
      old_size_(other.old_size_),
      descriptor_(std::exchange(other.descriptor_, -1)),
      target_lock_(std::exchange(other.target_lock_, -1)),
      signal_slot_(std::exchange(other.signal_slot_, -1)) {}

PrivateDocument::~PrivateDocument() {
    // The lock goes last: until then nobody else takes the file over. A signal may have removed it,
    // and then its name is free for others.
    if (has_name_ && is_named(descriptor_, name_)) unlink(name_.c_str());
    forget_at_signal(signal_slot_);
    if (descriptor_ >= 0) close(descriptor_);
    if (target_lock_ >= 0) close(target_lock_);
}

std::variant<PrivateDocument, Result> PrivateDocument::begin(const std::string& target) {
    PrivateDocument document;
    if (is_no_regular_file(target)) {
        std::error_code error;
        if (fs::is_directory(target, error)) return refusal(EISDIR);
        if (access(target.c_str(), W_OK) != 0) return refusal(errno);
        document.name_ = target;
        return document;
    }
    auto found = without_links(target);
    if (const auto* const refused = std::get_if<Result>(&found)) return *refused;
    document.target_ = std::get<std::string>(std::move(found));
    Result result = document.begin_beside();
    if (result.status == Status::not_permitted && access(document.target_.c_str(), F_OK) == 0) {
        result = document.begin_elsewhere();
    }
    if (is_done(result)) result = document.take_over_permissions();
    if (!is_done(result)) return result;
    return document;
}

// The existing document is examined only now that nobody else writes it.
Result PrivateDocument::take_over_permissions() {
    struct stat info {};
    if (stat(target_.c_str(), &info) == 0) {
        old_size_ = static_cast<std::uint64_t>(info.st_size);
        if (access(target_.c_str(), W_OK) != 0) return refusal(errno);
        if (fchmod(descriptor_, info.st_mode & PERMISSIONS) != 0) return refusal(errno);
    }
    return ftruncate(descriptor_, 0) == 0 ? Result{} : refusal(errno);
}

void PrivateDocument::leave_to_parent() {
    has_name_ = false;
    forget_at_signal(std::exchange(signal_slot_, -1));
    for (int* const descriptor : {&descriptor_, &target_lock_}) {
        if (*descriptor >= 0) close(std::exchange(*descriptor, -1));
    }
}

std::string PrivateDocument::folder() const {
    return fs::path(target_).parent_path().string();
}

Result PrivateDocument::begin_beside() {
    name_ = private_name(target_);
    for (;;) {
        descriptor_ = open(name_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, ANYONE);
        if (descriptor_ < 0 && errno == ENOENT) {
            return {Status::permanent_error, "there is no folder " + folder() + "; make it"};
        }
        if (descriptor_ < 0) return refuse_private_file(name_, errno);
        if (!lock(descriptor_)) return {Status::in_use, {}};
        if (is_named(descriptor_, name_)) break;
        close(descriptor_);
    }
    has_name_ = true;
    signal_slot_ = remove_at_signal(name_, target_);
    // A writer that may not make files here locks the document itself.
    return is_locked(target_) ? Result{Status::in_use, {}} : Result{};
}

Result PrivateDocument::begin_elsewhere() {
    target_lock_ = open(target_.c_str(), O_RDWR | O_CLOEXEC);
    if (target_lock_ < 0) return refusal(errno);
    const bool is_alone =
        lock(target_lock_) && is_named(target_lock_, target_) && !is_locked(name_);
    if (!is_alone) return {Status::in_use, {}};
    descriptor_ = platform::open_nameless({});
    if (descriptor_ < 0) return refusal(errno);
    name_ = platform::name_of_descriptor(descriptor_);
    return {};
}

Result PrivateDocument::copy_into_place() {
    struct stat info {};
    if (fstat(descriptor_, &info) != 0) return refusal(errno);
    // The space is allocated before anything is changed.
    int error = posix_fallocate(target_lock_, 0, info.st_size);
    if (error != 0) return refusal(error);
    const auto size = static_cast<std::uint64_t>(info.st_size);
    error = platform::copy_bytes(descriptor_, 0, size, target_lock_, 0);
    if (error != 0) return refusal(error);
    const bool is_kept = ftruncate(target_lock_, info.st_size) == 0 && fsync(target_lock_) == 0;
    return is_kept ? Result{} : refusal(errno);
}

Result PrivateDocument::complete() {
    if (descriptor_ < 0) return {};
    if (target_lock_ >= 0) return copy_into_place();
    if (fsync(descriptor_) != 0) return refusal(errno);
    if (rename(name_.c_str(), target_.c_str()) != 0) return refusal(errno);
    has_name_ = false;
    return {};
}

Result check_unlocked(const std::string& document) {
    if (is_no_regular_file(document)) return {};
    const auto found = without_links(document);
    if (const auto* const refused = std::get_if<Result>(&found)) return *refused;
    const auto& target = std::get<std::string>(found);
    const bool is_held = is_locked(private_name(target)) || is_locked(target);
    return is_held ? Result{Status::in_use, {}} : Result{};
}

}  // namespace gnucobol
