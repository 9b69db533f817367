// Growable arrays of fixed-size items. An array is a pointer to its first item; items lie one
// after the other; the count is kept with the array.
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/export.h"

// Describes an array; exchanged with the host, 24 bytes.
struct HostArrayType {
    std::uint32_t item_size;  // bytes
    std::uint32_t growth;     // items to grow by at least; 0 = the host's choice
    std::uint64_t kind;       // HOST_ARRAY_KIND
    const char* description;
};
static_assert(sizeof(HostArrayType) == 24);
constexpr std::uint64_t HOST_ARRAY_KIND = 2;
constexpr std::uint32_t HOST_ARRAY_END = 0xFFFFFFFF;

// An empty array, owned by the caller; null when memory is exhausted.
HOST_API void* host_array_new(const HostArrayType* type, const char* source, int line);
// Copies one item in before the item at `position` (HOST_ARRAY_END or beyond the last = at the
// end). Result: the array, perhaps moved; null when memory is exhausted, and then the old array
// stands.
HOST_API void* host_array_insert(void* array, const void* item, std::uint32_t position,
                                 const char* source, int line);
// The same; the item takes the given index.
HOST_API void* host_array_insert_at(void* array, const void* item, std::uint32_t index,
                                    const char* source, int line);
// Removes `count` items from `index` on, as far as there are any; later items move down.
HOST_API void host_array_delete(void* array, std::uint32_t index, std::uint32_t count);
// Number of items; 0 for null.
HOST_API std::uint32_t host_array_count(const void* array);
// Releases the array, not what its items refer to. Null is allowed.
HOST_API void host_array_free(void* array, const char* source, int line);
