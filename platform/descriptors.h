// Complete reads and writes on the system's descriptors: interrupted and partial calls are
// continued, and non-blocking descriptors are waited for.
// Failures are system error numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include <sys/types.h>

namespace platform {

constexpr int STANDARD_INPUT = 0;
constexpr int STANDARD_OUTPUT = 1;
constexpr int STANDARD_ERROR = 2;

// Opens a file for reading; it is not handed on to other programs. Result: a descriptor that the
// caller closes; -1 on failure with the reason in errno: EISDIR for a folder.
int open_to_read(const char* name);
// Opens a file for writing, empty, creating it when there is none; otherwise as open_to_read.
int open_to_write(const char* name);
// Result: 0 or the error number.
int close_descriptor(int descriptor);

// Writes all bytes. Result: 0 or the error number.
int write_whole(int descriptor, const char* data, std::size_t size);
// Reads what there is, waiting for the first byte. Result: bytes read, 0 at the end, -1 on failure
// with the reason in errno.
ssize_t read_some(int descriptor, char* buffer, std::size_t size);

// Where in its file the next byte is written; nothing where the position cannot be chosen: of
// pipes, devices, and descriptors that write at the end whatever their position is.
std::optional<std::uint64_t> output_position(int descriptor);
// Lets the next byte be read or written at this position. Result: 0 or the error number.
int move_to(int descriptor, std::uint64_t position);

}  // namespace platform
