// Records in which tables with DEPENDING ON take the room of their entries in use only, so that
// what comes after them slides, or the record ends with them. The module knows records with every
// entry in its place.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace records {

// Bytes of a record that lie together in both forms.
struct SlidingRun {
    std::int32_t offset;  // with every entry in its place
    std::int32_t packed;  // offset in the packed record
    std::int32_t length;
};

// A counter that is not a number of entries that its table may have.
struct CounterProblem {
    std::string counter;   // name of the item
    std::int32_t offset;   // of the counter, with every entry in its place
    std::int32_t minimum;  // of the table
    std::int32_t maximum;
};

// Where a record ends by the counter of the table with DEPENDING ON at its end.
struct CountedEnd {
    std::int32_t length;  // the record's own when the counter is out of its range
    std::optional<CounterProblem> problem;
};

}  // namespace records
