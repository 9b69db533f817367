#include "platform/clock.h"

namespace platform {

bool utc_time(std::time_t moment, std::tm& time) {
    return gmtime_r(&moment, &time) != nullptr;
}

bool local_time(std::time_t moment, std::tm& time) {
    return localtime_r(&moment, &time) != nullptr;
}

}  // namespace platform
