// Name indexes: records found by the NUL-terminated string that each record points to.
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/export.h"

// Describes an index; exchanged with the host, 56 bytes.
struct HostNameIndexType {
    std::uint32_t key_kind;         // HOST_KEY_STRING
    std::uint8_t reserved[28];      // 0
    void (*release)(void* record);  // called with each record on clear and free; may be null
    const char* description;
    std::uint64_t key_offset;  // where in a record the pointer to its key lies
};
static_assert(sizeof(HostNameIndexType) == 56);
static_assert(offsetof(HostNameIndexType, release) == 32);
static_assert(offsetof(HostNameIndexType, key_offset) == 48);
constexpr std::uint32_t HOST_KEY_STRING = 4;

struct HostNameIndex;

// An empty index, owned by the caller; null when memory is exhausted. The descriptor is copied.
HOST_API HostNameIndex* host_hash_new(const HostNameIndexType* type, const char* source, int line,
                                      int flags);
// Stores a record under its key. The record stays the caller's until clear or free hands it to the
// release routine; its key must stay valid and unchanged while it is stored. A second record of the
// same key is stored, but only the first is found. Result: 1, or 0 when memory is exhausted.
HOST_API int host_hash_insert(HostNameIndex* index, void* record, const char* source, int line,
                              int flags);
// The record whose key equals `key`, byte for byte; null when there is none.
HOST_API void* host_hash_find(const HostNameIndex* index, const char* key);
// Hands every record to the release routine and forgets it; the index keeps its room.
HOST_API void host_hash_clear(HostNameIndex* index, const char* source, int line, int flags);
// Like clear, then releases the index. Null is allowed.
HOST_API void host_hash_free(HostNameIndex* index, const char* source, int line, int flags);
