#include "platform/shared_files.h"

#include <cerrno>
#include <utility>

// Needed by workers only, of which there are none (processes.cpp).
namespace platform {

int open_nameless(const std::string&) {
    errno = ENOSYS;
    return -1;
}

std::string name_of_descriptor(int) {
    return {};
}

int copy_bytes(int, std::uint64_t, std::uint64_t, int, std::uint64_t) {
    return ENOSYS;
}

std::optional<NamelessFile> NamelessFile::create() {
    errno = ENOSYS;
    return std::nullopt;
}

NamelessFile::NamelessFile(NamelessFile&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)), name_(std::move(other.name_)) {}
NamelessFile::~NamelessFile() = default;

std::optional<std::uint64_t> NamelessFile::size() const {
    errno = ENOSYS;
    return std::nullopt;
}

std::optional<std::string> NamelessFile::end(std::size_t) const {
    errno = ENOSYS;
    return std::nullopt;
}

int NamelessFile::copy(std::uint64_t, std::uint64_t, int, std::uint64_t) const {
    return ENOSYS;
}

int open_to_write_into(const char*) {
    errno = ENOSYS;
    return -1;
}

int write_at(int, const char*, std::size_t, std::uint64_t) {
    return ENOSYS;
}

}  // namespace platform
