// Which field or table an element gets, by what samples show and what a schema says.
#pragma once

#include <cstdint>
#include <string>

#include "conversion/samples/document_profile.h"

namespace conversion {

struct FieldForm {
    std::string picture;  // the clause
    std::uint64_t bytes = 0;
    bool is_number = false;
    bool is_guess = false;  // neither samples nor a schema give a limit
};

struct TableForm {
    std::uint64_t occurs = 1;  // 1: not a table
    bool is_guess = false;
};

constexpr std::uint64_t MOST_OCCURS = 32767;  // of a table

struct FieldWishes {
    int grow = 20;          // lengths and tables get so many percent more than was seen
    bool is_exact = false;  // no number that would be written differently from how it was read
};

// The field of an element without elements. Where a schema sets a limit, that counts, if what was
// seen keeps to it; otherwise what was seen, and more. Numbers that need more than 38 digits, and
// numbers of which some are empty are texts, as zero is not empty; so are
// those of which some are missing and others zero.
FieldForm field_of(const ElementProfile& element, const FieldWishes& wishes);

// How often it occurs in the one around it, in the same way.
TableForm table_of(const ElementProfile& element, const FieldWishes& wishes);

// What a schema says of it and what was seen, in one line; may be empty.
std::string comment_on(const ElementProfile& element);

}  // namespace conversion
