// Finds the children of one name below a parent. A few children are searched one by one. An element
// with many keeps an index: a hash table with a slot for each name that its children have. The
// children of one name are linked in a ring, so that a slot can stand on any of them.
#pragma once

#include "fsi/xml/elements/element.h"
#include "fsi/xml/elements/occurrence_numbers.h"

// Makes room for one more child, so that adding it to the index cannot fail. False when memory is
// exhausted; the children are then as before.
bool reserve_child_name(XmlElement& parent);

// The children of a name.
SameName find_same_name(const XmlElement& parent, const XmlName& name);

// Takes a child into the index, for which room has been reserved. Takes it out again. Without an
// index both do nothing.
void add_child_name(XmlElement& parent, XmlElement& child);
void remove_child_name(XmlElement& parent, XmlElement& child);

// Gives up the index; the children are about to be released.
void drop_child_names(XmlElement& parent);
