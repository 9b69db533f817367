// Messages to the person who runs a program: one line each, on standard error.
#pragma once

#include <string>

#include "gnucobol/fcd.h"

namespace gnucobol {

// Reports an operation that ends with a status of 30 or above; with SXML_VERBOSE every status.
// `reason` may be empty.
void report(const std::string& file, Operation operation, Status status, const std::string& reason);

// Reports something odd, with SXML_VERBOSE only.
void report_warning(const std::string& file, const std::string& warning);

}  // namespace gnucobol
