// Bytes that are read from a file or from standard input.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "conversion/problem.h"
#include "platform/files.h"

namespace conversion {

class ByteSource {
  public:
    // Opens a file, or takes standard input for "-". A folder is a problem.
    static Result<ByteSource> open(const std::string& name);
    ByteSource(ByteSource&& other) noexcept;
    ByteSource& operator=(ByteSource&&) = delete;
    ~ByteSource();

    // Reads up to `size` bytes; fewer only at the end.
    Result<std::size_t> read(std::uint8_t* buffer, std::size_t size);
    // Bytes in a regular file; nothing for a pipe or a device.
    std::optional<std::uint64_t> size() const;
    // As it is shown in messages.
    const std::string& name() const { return name_; }

  private:
    ByteSource(std::string name, int descriptor);

    std::string name_;
    int descriptor_;  // -1: moved away
};

// Everything that is left.
Result<std::string> read_all(ByteSource& source);

}  // namespace conversion
