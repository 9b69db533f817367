// Registry of typed objects behind 32-bit handles. A handle carries a generation, so that a stale
// one is told from the live one that took its place.
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/export.h"

// Describes a type of object; exchanged with the host, 32 bytes.
struct HostHandleType {
    std::uint32_t object_size;
    std::uint8_t reserved1[8];              // 0
    std::uint8_t kind;                      // HOST_HANDLE_KIND
    std::uint8_t reserved2[11];             // 0
    void (*destroy)(std::uint32_t handle);  // called when a handle is released; may be null
};
static_assert(sizeof(HostHandleType) == 32);
static_assert(offsetof(HostHandleType, kind) == 12);
static_assert(offsetof(HostHandleType, destroy) == 24);
constexpr std::uint8_t HOST_HANDLE_KIND = 2;

// Registers a type for the life of the process; the descriptor is copied. Result: a type id, never
// 0; 0 only when memory is exhausted.
HOST_API std::uint32_t host_handle_type_register(const HostHandleType* type);

// Makes a zero-filled object of the type's size. Result: its handle, owned by the caller; 0 when
// memory is exhausted or the type id is unknown. `source` and `description` as for host_alloc.
HOST_API std::uint32_t host_handle_new(std::uint32_t type, int reserved1, int reserved2,
                                       const char* source, int line, const char* description,
                                       int flags);

// The object of a live handle, null for any other number. It stays put until the handle is
// released.
HOST_API void* host_handle_ptr(std::uint32_t handle);

// The type id of a live handle; 0 for a number that is not one.
HOST_API std::uint32_t host_handle_type(std::uint32_t handle);

// Walks the live handles of a type in no particular order: starts after `previous` (0 = from the
// start). Result: the next handle, 0 after the last.
HOST_API std::uint32_t host_handle_next(std::uint32_t previous, std::uint32_t type);

// Runs the type's destroy routine with the handle, then releases object and handle. A handle that
// is not live, or whose release is already under way, is left alone.
HOST_API void host_handle_free(std::uint32_t handle, const char* source, int line, int flags);
