// The element hash: the elements of the record being read, found by name. The index holds the first
// element of each name; the others are chained behind it in document order.
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/name_index.h"

struct XmlHashEntry {
    char* name;             // the element's name as stored in the tree; owned by the entry
    std::uint32_t element;  // handle
    XmlHashEntry* next;     // next element of this name, null for the last
    std::uint32_t used;     // bit 0: for a reader, to mark data that it has moved; 0 at first
    XmlHashEntry* last;     // of a chain's first entry: its last entry
};
static_assert(offsetof(XmlHashEntry, name) == 0);
static_assert(offsetof(XmlHashEntry, next) == 16);
static_assert(offsetof(XmlHashEntry, used) == 24);

// An empty element hash; null when memory is exhausted. Clearing and freeing it through the host
// releases the entries.
HostNameIndex* create_element_hash();

// Makes an entry for `element`, attaches it to the element as user data and adds it to the hash.
// `name` is a tracked block that the entry takes over. False when memory is exhausted; the name is
// then still the caller's and nothing is attached.
bool add_to_element_hash(HostNameIndex* hash, std::uint32_t element, char* name);
