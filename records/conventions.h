// What a program's SPECIAL-NAMES say about its records.
#pragma once

#include "records/description.h"

namespace records {

// The source says DECIMAL-POINT IS COMMA.
bool has_decimal_comma(const Description& description);

}  // namespace records
