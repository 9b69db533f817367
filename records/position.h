// Where a record stands among those of its file. Conditions may ask for it (FIRST, LAST).
#pragma once

#include "host/record_description.h"

namespace records {

struct RecordPosition {
    bool is_first = false;
    bool is_last = false;
};

// What conditions of a description of this library find from now on. At first, neither.
void set_position(Xfd& xfd, RecordPosition position);

}  // namespace records
