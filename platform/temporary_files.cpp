#include "platform/temporary_files.h"

#include <utility>

#include "platform/files.h"

namespace platform {

TemporaryFile::TemporaryFile(std::string name) : name_(std::move(name)), removed_(name_) {}

TemporaryFile::TemporaryFile(TemporaryFile&& other) noexcept
    : name_(std::exchange(other.name_, {})), removed_(std::move(other.removed_)) {}

TemporaryFile::~TemporaryFile() {
    if (!name_.empty()) remove_file(name_.c_str());
}

std::string TemporaryFile::keep() {
    removed_ = {};
    return std::exchange(name_, {});
}

int TemporaryFile::rename_to(const std::string& target) {
    const int error = rename_file(name_.c_str(), target.c_str());
    if (error != 0) return error;
    name_.clear();
    removed_ = {};
    return 0;
}

TemporaryFolder::TemporaryFolder(std::string name) : name_(std::move(name)), removed_(name_) {}

TemporaryFolder::TemporaryFolder(TemporaryFolder&& other) noexcept
    : name_(std::exchange(other.name_, {})), removed_(std::move(other.removed_)) {}

TemporaryFolder::~TemporaryFolder() {
    if (!name_.empty()) remove_empty_folder(name_.c_str());
}

}  // namespace platform
