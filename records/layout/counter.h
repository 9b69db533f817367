// The counter of a table with DEPENDING ON.
#pragma once

#include <cstdint>
#include <optional>

#include "records/layout/model.h"

namespace records {

// A field of a record as the conversions of numbers take it. `bytes` must outlive it.
XfdDataDesc descriptor_of(const Operand& item, const std::uint8_t* bytes);

// The number of entries that a counter tells, whose bytes these are; nothing when it is not a
// number from `minimum` to `maximum`.
std::optional<std::int32_t> count_of(const Operand& counter, const std::uint8_t* bytes,
                                     std::int32_t minimum, std::int32_t maximum);

}  // namespace records
