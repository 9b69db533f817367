// The adapter's messages to the user, on standard error.
#pragma once

#include <exception>
#include <string>

#include "gnucobol/status.h"

namespace gnucobol {

// Takes SXML_VERBOSE from the settings as they are now.
void refresh_report_settings();

// Tells what an operation (`verb`, as in the program) on a file gave: errors always, everything
// with SXML_VERBOSE. Of one message for one file the first ten are printed.
void report(const std::string& file, const char* verb, const Result& result);

// Tells that an operation ended with an exception, as file status 30. Needs no memory when none is
// left.
void report_failure(const char* file, const char* verb, const std::exception& failure);

// Reports something about a file other than a status, within the same limit.
void report_warning(const std::string& file, const std::string& warning);

// Tells that data of a document is not in a record as it is there. `kind` is what is counted.
void report_data(const std::string& file, const std::string& kind, const std::string& text);

// Says how often messages for the file were not printed. It has been closed.
void sum_up_reports(const std::string& file);

}  // namespace gnucobol
