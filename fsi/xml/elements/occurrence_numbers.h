// Occurrence numbers. Among the children of one parent a name that occurs once has no number of its
// own; one that occurs more often numbers its elements in the order of their creation. An element
// has the numbers of the repeated elements on its path, outermost first. It keeps its own number
// only: the others are those of the numbered elements above it.
//
// An element that has XML_INDEX_LIMIT numbers is full: it and everything below it keep the numbers
// they have and gain no further ones, neither in front nor at the end. So numbers that elements
// above it came by since it became full are not its own.
#pragma once

#include "fsi/xml/elements/element.h"

// The children of one name below one parent, before another one comes.
struct SameName {
    std::uint32_t count;
    XmlElement* first;  // the first in list order, or any: when there is more than one, all of them
                        // have numbers of their own already; null when there is none
};

// Gives a new child its numbers: those of its parent, and one of its own when there are others of
// its name. The only other one so far gets the number 1 when it has none yet.
void number_child(const XmlElement& parent, XmlElement& child, SameName same);

// Stores the numbers of an element. Result: how many.
int occurrence_numbers(const XmlElement& element, std::uint32_t (&numbers)[XML_INDEX_LIMIT]);
