// Bytes that are written to a file or to standard output.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "conversion/problem.h"

namespace conversion {

class ByteSink {
  public:
    // Opens a file and empties it, or takes standard output for "-". `shown_name` is what problems
    // call it; empty: as it is opened.
    static Result<ByteSink> open(const std::string& name, const std::string& shown_name = "");
    ByteSink(ByteSink&& other) noexcept;
    ByteSink& operator=(ByteSink&&) = delete;
    // Without close(), everything is written, too, but failures are not reported.
    ~ByteSink();

    // Lets the next byte of a file be written at this position; nothing may have been written yet.
    Done move_to(std::uint64_t position);
    Done write(const void* data, std::size_t size);
    // Writes out the rest and closes the file. Nothing may be written after that.
    Done close();

  private:
    ByteSink(std::string shown_name, int descriptor);
    Done flush();

    std::string shown_name_;
    int descriptor_;  // -1: closed
    std::unique_ptr<char[]> buffer_;
    std::size_t filled_ = 0;
};

}  // namespace conversion
