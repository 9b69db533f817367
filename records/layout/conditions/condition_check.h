// What is wrong with a condition.
#pragma once

#include <cstdint>
#include <string>

#include "records/layout/model.h"

namespace records {

// What is wrong with a condition, or empty. An item's bytes must lie in the record in every
// occurrence, literals must be what their kind says and fit the item they are compared with.
std::string condition_problem(const Condition& condition, std::int32_t record_length);

}  // namespace records
