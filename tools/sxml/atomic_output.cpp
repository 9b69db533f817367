#include "tools/sxml/atomic_output.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>

#include "tools/sxml/errors.h"

namespace command {

namespace {

constexpr mode_t PERMISSIONS = 07777;

// Where a chain of symbolic links ends, whether there is a file or not.
std::string follow_links(const std::string& name) {
    constexpr int MOST_LINKS = 40;
    std::filesystem::path path = name;
    std::error_code error;
    for (int links = 0; links < MOST_LINKS; ++links) {
        if (!std::filesystem::is_symlink(path, error)) return path.string();
        const std::filesystem::path next = std::filesystem::read_symlink(path, error);
        if (error) break;
        path = path.parent_path() / next;
    }
    fail_file(name, ELOOP);
}

}  // namespace

AtomicOutput::AtomicOutput(const std::string& target) : target_(target) {
    if (target == "-") return;
    target_ = follow_links(target);
    struct stat present = {};
    const bool exists = stat(target_.c_str(), &present) == 0;
    if (exists && S_ISDIR(present.st_mode)) fail_file(target, EISDIR);
    if (exists && !S_ISREG(present.st_mode)) return;
    const std::filesystem::path path(target_);
    if (!path.has_filename()) fail_file(target, exists ? EISDIR : ENOENT);
    const std::string folder = path.has_parent_path() ? path.parent_path().string() : ".";
    temporary_ = std::make_unique<TemporaryFile>(folder, path.filename().string());
    if (exists) chmod(temporary_->name().c_str(), present.st_mode & PERMISSIONS);
}

// A new file is not cut to length 0: some file systems take that for a rewrite of important data,
// and closing it waits for the disk.
std::FILE* AtomicOutput::open() const {
    return std::fopen(write_name().c_str(), temporary_ ? "r+b" : "wb");
}

void AtomicOutput::commit() {
    if (temporary_) temporary_->rename_to(target_);
}

void write_output(const std::string& target, std::string_view text) {
    AtomicOutput output(target);
    const bool standard = target == "-";
    std::FILE* file = standard ? stdout : output.open();
    if (file == nullptr) fail_file(target, errno);
    bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
    written = (standard ? std::fflush(file) : std::fclose(file)) == 0 && written;
    if (!written) fail_file(standard ? "standard output" : target, errno);
    output.commit();
}

}  // namespace command
