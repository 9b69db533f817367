// Calendar dates and times.
#pragma once

#include <ctime>

namespace platform {

// The day and time of a moment in UTC. False when the year is out of reach.
bool utc_time(std::time_t moment, std::tm& time);
// The same in the time zone of the process.
bool local_time(std::time_t moment, std::tm& time);

}  // namespace platform
