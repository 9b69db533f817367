// Records that a table with DEPENDING ON ends: what they have that its counter does not count.
#pragma once

#include <cstdint>

#include "conversion/fields/record_fields.h"
#include "conversion/problem.h"
#include "conversion/texts/character_set.h"
#include "records/description.h"

namespace conversion {

// Whether a field holds what a record has for it that nothing was stored in: spaces, zero.
// `bytes` are the field's.
bool is_blank(const XfdItem& item, const std::uint8_t* bytes, const CharacterSet& characters);

// That the counter is not a number of entries that its table may have. The place has the counter's
// field.
Problem counter_problem(const records::CounterProblem& counter, const RecordLayout& layout,
                        const RecordFields& fields);

// That a field with data lies in an entry that is not counted. The place has the field.
Problem uncounted_problem(const Field& field, const RecordFields& fields);

}  // namespace conversion
