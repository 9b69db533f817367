// Telling the occurrences of a table apart: an element's occurrence numbers against an item's
// subscripts.
#pragma once

#include <cstdint>

#include "fsi/xml/handlers/records/record_tree.h"
#include "host/record_description.h"

// Whether an element must carry as many numbers as its item has dimensions.
bool matches_exactly(const RecordTree& tree);

// True when the occurrence numbers of an element (which have been made) fit the subscripts of
// `item`. They fit when both are the same; an element without numbers fits subscripts that are
// all 1. Without exact table match, an element also fits that lacks the number of a dimension whose
// subscript is 1.
bool same_array_signature(const RecordTree& tree, std::uint32_t element, const XfdItem& item);
