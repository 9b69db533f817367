// Bytes from one open file to another.
#pragma once

#include <cstdint>

#include "gnucobol/status.h"

namespace gnucobol {

// Copies the bytes from `begin` to before `end` of a file to `offset` of another one. Status::done,
// or why not all of them could be copied.
Result copy_part(int from, std::uint64_t begin, std::uint64_t end, int to, std::uint64_t offset);

}  // namespace gnucobol
