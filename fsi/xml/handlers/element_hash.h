// The element hash: the elements of the record being read, found by name. The index holds the first
// element of each name; the others are chained after it in document order.
#pragma once

#include <cstddef>
#include <cstdint>

#include "fsi/xml/elements/element.h"
#include "host/name_index.h"
#include "sxml/xml_parser_api.h"

// In an entry: the name is owned, and `last` is the last entry of the chain that a first one
// begins.
static_assert(offsetof(XmlHashEntry, name) == 0);
static_assert(offsetof(XmlHashEntry, next) == 16);
static_assert(offsetof(XmlHashEntry, used) == 24);

// An empty element hash; null when memory is exhausted. Clearing and freeing it through the host
// releases the entries.
HostNameIndex* create_element_hash();

// Makes an entry for `element`, attaches it to the element as user data and adds it to the hash.
// `name` is a tracked block that the entry takes over. False when memory is exhausted; the name is
// then still the caller's and nothing is attached.
bool add_to_element_hash(HostNameIndex* hash, XmlElement& element, char* name);
