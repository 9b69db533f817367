// Distinguishing the occurrences of a table: an element's occurrence numbers against an item's
// subscripts.
#pragma once

#include <cstdint>

#include "fsi/xml/sxml/reading/input_items.h"
#include "host/record_description.h"

// Whether an element must carry as many numbers as its item has dimensions.
bool matches_exactly(const RecordTree& tree);

// Whether elements are matched by their path in the description.
bool matches_by_place(const RecordTree& tree);

// True when the occurrence numbers of an element (which have been made) fit the subscripts of
// `item`, one of the input's. They fit when both are the same; an element without numbers fits
// subscripts that are all 1. Without exact table match, an element also fits that lacks the number
// of a dimension whose subscript is 1. By place, an element in groups of the same names as the
// item's fits when each number is that of the table around the item, 1 where an entry has none; and
// one that stands at the place of another item of its name never does.
bool same_array_signature(const InputItems& input, std::uint32_t element, const XfdItem& item);
