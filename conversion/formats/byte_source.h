// Bytes that are read from a file or from standard input.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "conversion/problem.h"
#include "platform/files.h"

namespace conversion {

class ByteSource {
  public:
    // Opens a file, or takes standard input for "-". A folder is a problem. `shown_name` is what
    // problems call it; empty: as it is opened.
    static Result<ByteSource> open(const std::string& name, const std::string& shown_name = "");
    ByteSource(ByteSource&& other) noexcept;
    ByteSource& operator=(ByteSource&&) = delete;
    ~ByteSource();

    // Skips the first bytes, and lets the source end the given number of bytes before its end. To
    // be called before anything is read. A problem when there are fewer bytes.
    Done leave_out(std::uint64_t at_start, std::uint64_t at_end);
    // Reads up to `size` bytes; fewer only at the end.
    Result<std::size_t> read(std::uint8_t* buffer, std::size_t size);
    // The next bytes, up to `size` of them, fewer only at the end; they are read again. Valid until
    // the next call.
    Result<std::span<const std::uint8_t>> peek(std::size_t size);
    // Where the next byte stands in the file.
    std::uint64_t offset() const { return offset_; }
    // Bytes in a regular file, less what is left out at its end; nothing for a pipe or a device.
    std::optional<std::uint64_t> size() const;
    // As it is shown in messages.
    const std::string& name() const { return name_; }

  private:
    ByteSource(std::string name, int descriptor);
    Done read_ahead(std::size_t size);

    std::string name_;
    int descriptor_;  // -1: moved away
    std::uint64_t offset_ = 0;
    std::vector<std::uint8_t> ahead_;  // read, and not yet given out
    std::size_t left_out_at_end_ = 0;
};

// Everything that is left.
Result<std::string> read_all(ByteSource& source);

}  // namespace conversion
