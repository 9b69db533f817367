// What a document type says about documents, put beside what samples of them hold.
#pragma once

#include <vector>

#include "conversion/problem.h"
#include "conversion/samples/document_profile.h"
#include "conversion/schemas/document_type.h"
#include "conversion/schemas/schema_profile.h"

namespace conversion {

// Declares the elements of a profile as the document type does, and adds those that no sample has,
// unless that is not wanted. Result: what has no form in records, each with its place. A problem
// when there are too many elements. Throws std::bad_alloc.
Result<std::vector<Problem>> declare_by_type(DocumentProfile& profile, const DocumentType& type,
                                             const SchemaWishes& wishes);

}  // namespace conversion
