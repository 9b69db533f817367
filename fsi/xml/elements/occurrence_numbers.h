// Occurrence numbers. Among the children of one parent a name that occurs once has no number of its
// own; one that occurs more often numbers its elements in the order of their creation. Each element
// carries the numbers of the repeated elements on its path, outermost first.
//
// An element that carries XML_INDEX_LIMIT numbers is full: it and everything below it keep the
// numbers they have and gain no further ones, neither in front nor at the end.
#pragma once

#include "fsi/xml/elements/element.h"

// The children of one name below one parent, before another one comes.
struct SameName {
    std::uint32_t count;
    std::uint32_t first;  // the first in list order, or any: when there is more than one, all of
                          // them have numbers of their own already; 0 when there is none
};

// Gives a new child its numbers: those of its parent, and one of its own when there are others of
// its name. The only other one so far gets the number 1 when it has none yet.
void number_child(const XmlElement& parent, XmlElement& child, SameName same);
