// The record layouts of a description.
#pragma once

#include <cstdint>
#include <vector>

#include "host/record_description.h"

namespace gnucobol {

struct RecordLayout {
    std::int32_t first_item;
    std::int32_t end_item;                 // behind the last
    std::uint32_t length;                  // bytes
    std::vector<std::int16_t> conditions;  // of its fields
};

// In the description's order.
std::vector<RecordLayout> layouts_of(const Xfd& xfd);

}  // namespace gnucobol
