// Output that appears under its name only when it is complete.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "tools/sxml/temporary_file.h"

namespace command {

// Where an output goes. A regular file, or one that does not exist yet, is written under a
// temporary name beside it and renamed by commit(); until then, and after a failure, the target is
// what it was. Standard output ("-"), devices and pipes are written directly.
class AtomicOutput {
  public:
    // Throws Failure when nothing can be written there.
    explicit AtomicOutput(const std::string& target);

    const std::string& target() const { return target_; }
    // Opens the output, which is empty. Null with the system's error number when that fails.
    std::FILE* open() const;
    // The name to open for writing.
    const std::string& write_name() const { return temporary_ ? temporary_->name() : target_; }
    bool is_direct() const { return temporary_ == nullptr; }
    // Puts the finished output in its place. Throws Failure.
    void commit();

  private:
    std::string target_;  // symbolic links followed
    std::unique_ptr<TemporaryFile> temporary_;
};

// Writes a text as one such output. Throws Failure.
void write_output(const std::string& target, std::string_view text);

}  // namespace command
