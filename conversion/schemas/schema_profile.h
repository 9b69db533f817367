// What a schema says about documents, put beside what samples of them hold.
#pragma once

#include <string>
#include <vector>

#include "conversion/problem.h"
#include "conversion/samples/document_profile.h"
#include "conversion/schemas/schema_set.h"

namespace conversion {

struct SchemaWishes {
    std::string path{};          // of the elements that are the records, as orders/page/order;
                                 // empty: the children of the document element
    bool is_of_samples = false;  // what no sample has is left out
};

// Declares the elements of a profile as the schemas do, and adds those that no sample has, unless
// that is not wanted. The document element is that of the samples or the path; without them, the
// only one that can be. Result: what has no form in records, each with its place. A problem when
// the document element is not told, or not declared, when a component is not declared, or when a
// schema has no bounds. Throws std::bad_alloc.
Result<std::vector<Problem>> declare_by_schema(DocumentProfile& profile, const SchemaSet& schemas,
                                               const SchemaWishes& wishes);

}  // namespace conversion
