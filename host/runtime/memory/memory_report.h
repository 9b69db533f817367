// Queries of the tracked allocator, for the embedding program and tests.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "host/runtime/runtime_api.h"

namespace host {

struct BlockInfo {
    const void* address;
    std::size_t size;
    const char* source;
    int line;
    const char* description;
};

struct DescriptionTotal {
    std::string description;
    std::uint64_t live_blocks;
    std::uint64_t live_bytes;
    std::uint64_t all_blocks;  // ever allocated
};

// Live blocks, oldest first, the host's own bookkeeping left out (handles, strings, arrays and so
// on that the module owns count under the module's description).
RUNTIME_API std::vector<BlockInfo> live_blocks();
RUNTIME_API std::vector<DescriptionTotal> description_totals();
// Number of allocations (host_alloc, host_realloc and every service that allocates for the module)
// since the start. Two equal readings mean that nothing was allocated in between.
RUNTIME_API std::uint64_t allocation_count();
// Bytes the live blocks take, headers and pools included.
RUNTIME_API std::uint64_t live_bytes();
// Blocks found damaged (guard bytes overwritten, freed twice) so far; each is also reported on
// standard error. Always 0 in builds without guard bytes.
RUNTIME_API std::uint64_t damaged_blocks();
// True in builds with guard bytes: those without NDEBUG and without AddressSanitizer.
RUNTIME_API bool guards_blocks();

// Makes the n-th allocation from now fail (1 = the next), once; 0 turns the switch off.
// allocation_failed() tells whether it has fired.
RUNTIME_API void fail_allocation(std::uint64_t n);
RUNTIME_API bool allocation_failed();

// The most that the live blocks may take; what goes beyond fails as if memory were exhausted. 0: no
// limit. The setting SXML_MEMORY_LIMIT sets it.
RUNTIME_API void limit_memory(std::uint64_t bytes);
// Why the last allocation that failed did so, for people: the limit, or memory itself. Takes none.
RUNTIME_API const char* memory_problem();

// A line per live block, as SXML_HOST_LEAKS=1 prints it when the process ends.
RUNTIME_API std::string leak_report();

}  // namespace host
