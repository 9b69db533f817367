// The tracked allocator as the other services of the embedded host use it: every block that the
// module owns, whatever service made it, comes from here.
#pragma once

#include <cstddef>
#include <cstdint>

namespace host::memory {

// Where a block was asked for and what it is. The texts live as long as the process.
struct Origin {
    const char* source;
    int line;
    const char* description;
};

// Each gives null when memory is exhausted or the failure switch fires; nothing has changed then.
void* allocate(std::size_t size, const Origin& origin);
void* allocate_zeroed(std::size_t size, const Origin& origin);
// The block keeps its description and takes the new source and line.
void* reallocate(void* block, std::size_t size, const char* source, int line);

void release(void* block);

// The description that a live block was allocated with.
const char* description_of(const void* block);

}  // namespace host::memory
