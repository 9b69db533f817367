// Replaces a file with a new one: until the new one is complete, the name refers to the old one.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/temporary_files.h"

namespace platform {

class Replacement {
  public:
    // Prepares for writing what `target` names; links are followed. A regular file, or one that
    // does not exist yet, is written under a temporary name beside it. Nothing, with the reason in
    // errno, for what cannot be written: also for a link that another user has placed in a folder
    // where everybody may (EACCES).
    static std::optional<Replacement> begin(const std::string& target);

    // The name to open for writing: "-" for standard output, whatever it is called.
    const std::string& write_name() const { return temporary_ ? temporary_->name() : target_; }
    // Where links lead to.
    const std::string& target() const { return target_; }
    // True for what is written under its own name: standard output, pipes, devices, descriptors.
    bool is_direct() const { return !temporary_; }
    // Has the data written to the disk: what can fail when several files are to change together is
    // done for all of them before the first changes. Result: 0 or the error number.
    int prepare();
    // Has the data written to the disk, unless prepare() did, and puts the file in its place. It
    // has the permissions, owner and group of the old one as far as the process may give them.
    // Result: 0 or the error number; the old file is then as it was.
    int commit();

  private:
    explicit Replacement(std::string target) : target_(std::move(target)) {}

    std::string target_;
    std::optional<TemporaryFile> temporary_;
    bool is_on_disk_ = false;
};

}  // namespace platform
