// Reads and writes on the system's descriptors, done whole: interrupted and partial calls are taken
// up again. Failures are system error numbers.
#pragma once

#include <cstddef>

#include <sys/types.h>

namespace host {

// Writes all bytes. Result: 0 or the error number.
int write_whole(int descriptor, const char* data, std::size_t size);
// Reads what there is, waiting for the first byte. Result: bytes read, 0 at the end, -1 on failure
// (errno).
ssize_t read_some(int descriptor, char* buffer, std::size_t size);

}  // namespace host
