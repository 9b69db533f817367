// The record-type conditions of the record at hand.
#pragma once

#include <cstdint>

#include "host/record_description.h"

namespace command {

// Evaluates every condition of `xfd` on a record, and keeps the results in it.
void evaluate_conditions(Xfd& xfd, const void* record);

// True when a field with this condition number belongs to the record last evaluated with `xfd`.
inline bool condition_holds(const Xfd& xfd, std::int16_t condition) {
    if (condition == 0) return true;
    return condition > 0 && condition <= xfd.condition_count &&
           (xfd.conditions[condition - 1].is_true & 1) != 0;
}

// The function that the module evaluates conditions with. The command has evaluated them before it
// hands a record over, on the record as it was read; the module gets these results, so that it
// cannot judge a record translated from another character set differently. The results are those of
// the description that evaluate_conditions() was last called with.
extern "C" int give_condition_result(Xfd* xfd, int number, const void* record);

}  // namespace command
