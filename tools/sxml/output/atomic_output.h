// Output that appears under its name only when it is complete.
#pragma once

#include <string>
#include <string_view>

#include "conversion/formats/byte_sink.h"
#include "platform/replacing.h"

namespace command {

// Where an output goes. A regular file, or one that does not exist yet, is written under a
// temporary name beside it and takes its place at commit(); until then, and after a failure, the
// target is unchanged. Standard output ("-"), devices and pipes are written directly.
class AtomicOutput {
  public:
    // Throws Failure when nothing can be written there.
    explicit AtomicOutput(const std::string& target);

    // As the user calls it; "-" for standard output, also when he calls it otherwise.
    const std::string& target() const { return target_; }
    // As it is shown in messages.
    std::string shown_name() const { return target_ == "-" ? "standard output" : target_; }
    // Opens the output, which is empty. Throws Failure.
    conversion::ByteSink open() const;
    // The name to open for writing.
    const std::string& write_name() const { return replacement_.write_name(); }
    // Where links lead to.
    const std::string& file() const { return replacement_.target(); }
    bool is_direct() const { return replacement_.is_direct(); }
    // Has the finished output on the disk, so that commit() can hardly fail. Throws Failure.
    void prepare();
    // Puts the finished output in its place. Throws Failure.
    void commit();

  private:
    std::string target_;
    platform::Replacement replacement_;
};

// Writes a text as one such output. Throws Failure.
void write_output(const std::string& target, std::string_view text);

}  // namespace command
