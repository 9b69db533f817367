// Tracked allocation. Every block carries where it was asked for and what it is, for the host's
// memory accounting and its report of live blocks. A null result is the only sign of exhausted
// memory; the caller then reports it in its own way.
#pragma once

#include <cstddef>

#include "host/export.h"

// Kinds of block.
enum HostBlockKind : int {
    HOST_BLOCK_RAW = 0,    // not cleared: filled by the caller at once
    HOST_BLOCK_ZEROED = 2  // zero-filled
};

// Allocates a block of `size` bytes, aligned for any object.
// `source` and `description` must be texts that live as long as the process (literals): the host
// keeps the pointers, not copies. `line` is the call site's line. `flags` is 0.
// Result: the block, owned by the caller and released with host_free; null when memory is
// exhausted. A size of 0 gives a block that may be released but not used.
HOST_API void* host_alloc(std::size_t size, int kind, const char* source, int line,
                          const char* description, int flags);

// Changes a block's size, keeping its contents up to the smaller size. A null block allocates.
// Result: the block, perhaps moved; null when memory is exhausted, and then the old block stands.
// The block keeps the description it was allocated with.
HOST_API void* host_realloc(void* block, std::size_t size, const char* source, int line, int flags);

// Releases a block from host_alloc, host_realloc, host_strdup or host_fetch_url. Null is allowed.
HOST_API void host_free(void* block, const char* source, int line, int flags);

// Copies a NUL-terminated text into a block of its own, owned by the caller; null when memory is
// exhausted.
HOST_API char* host_strdup(const char* text, const char* source, int line);
