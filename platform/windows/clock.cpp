#include "platform/clock.h"

namespace platform {

bool utc_time(std::time_t moment, std::tm& time) {
    return gmtime_s(&time, &moment) == 0;
}

bool local_time(std::time_t moment, std::tm& time) {
    return localtime_s(&time, &moment) == 0;
}

}  // namespace platform
