// The places that allocate: one entry per source path, line and description, with its counts.
// Blocks name their site by its number.
#pragma once

#include <cstdint>
#include <span>

#include "host/runtime/memory/tracked_memory.h"

namespace host::memory {

struct Site {
    Origin origin;
    std::uint64_t live_blocks;
    std::uint64_t live_bytes;
    std::uint64_t all_blocks;
};

// The number of the site, entered when it is new. False when that takes memory and there is none.
bool find_site(const Origin& origin, std::uint32_t& number);
Site& site(std::uint32_t number);
std::span<const Site> sites();

}  // namespace host::memory
