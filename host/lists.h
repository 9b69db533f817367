// Doubly linked lists of 32-bit values. Readers walk the nodes themselves.
#pragma once

#include <cstdint>

#include "host/export.h"

struct HostListType {
    const char* description;
    std::uint64_t reserved;  // 0
};
static_assert(sizeof(HostListType) == 16);

struct HostList;

struct HostListNode {
    HostListNode* next;      // null for the last
    HostListNode* previous;  // null for the first
    HostList* list;
    std::uint32_t value;
};

struct HostList {
    HostListNode* first;
    HostListNode* last;
    std::uint64_t count;
};

// An empty list, owned by the caller; null when memory is exhausted.
HOST_API HostList* host_list_new(const HostListType* type, const char* source, int line, int flags);
// Inserts a value before the node `before`, at the end when it is null. Result: the new node, in
// place until removed; null when memory is exhausted.
HOST_API HostListNode* host_list_insert(std::uint32_t value, HostList* list, HostListNode* before,
                                        const char* source, int line, int flags);
// Unlinks and releases one node. Null is allowed.
HOST_API void host_list_remove(HostListNode* node, const char* source, int line, int flags);
// Releases the nodes and the list, not what the values refer to. Null is allowed.
HOST_API void host_list_free(HostList* list, const char* source, int line, int flags);
