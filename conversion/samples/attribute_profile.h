// Attributes of sample documents as the elements that from-xml makes of them.
#pragma once

#include <string>
#include <vector>

#include "conversion/problem.h"
#include "conversion/samples/document_profile.h"

namespace conversion {

// Puts the attributes that were profiled where AttributeElements puts them: as first elements into
// elements that hold elements, or never a text, and into records; after the others. Whether a name
// stands for the one kind or the other is the same everywhere. Result: what has no place, as its
// name is an element's. To be called once, after everything was added and declared. Throws
// std::bad_alloc.
std::vector<Problem> place_attributes(DocumentProfile& profile);

}  // namespace conversion
