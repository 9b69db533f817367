// Makes a copybook for reading documents from the contents of samples.
#pragma once

#include <string>
#include <vector>

#include "conversion/problem.h"
#include "conversion/samples/document_profile.h"
#include "conversion/samples/field_form.h"

namespace conversion {

struct CopybookWishes {
    FieldWishes fields{};
    bool is_packed = false;   // numbers are COMP-3
    std::string made_from{};  // the samples, for the comment at the beginning
};

struct SampleCopybook {
    std::string text;  // in fixed format
    // Contents of the documents that it cannot read, or cannot distinguish, each with its location
    // or path.
    std::vector<Problem> losses;
    // Names differ in case or have hyphens: documents must be read under 4GL_COLUMN_CASE 2.
    bool needs_exact_names = false;
    // Of elements that there are several of in the only record of a document, and that may be the
    // records themselves: the path that with_records_at() takes. Empty: there are none.
    std::string possible_records{};
};

// A copybook with a record layout for each kind of records, distinguished by the names of their
// elements. A problem when there is no record that has fields, or when a record would be larger
// than records can be. Throws std::bad_alloc.
Result<SampleCopybook> copybook_of(const DocumentProfile& profile, const CopybookWishes& wishes);

}  // namespace conversion
