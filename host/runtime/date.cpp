#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "host/files.h"
#include "platform/clock.h"
#include "platform/environment.h"

namespace {

constexpr int FIRST_YEAR = 1900;  // tm_year counts from here
constexpr int LAST_YEAR = 9999;

std::int32_t as_number(const std::tm& day) {
    return (day.tm_year + FIRST_YEAR) * 10000 + (day.tm_mon + 1) * 100 + day.tm_mday;
}

void report_once(const char* text) {
    constinit static bool is_reported = false;
    if (is_reported) return;
    is_reported = true;
    std::fprintf(
        stderr,
        "sxml: SOURCE_DATE_EPOCH=%s in the environment is not a number of seconds since 1970; "
        "today's date is used\n",
        text);
}

// The day of a number of seconds since 1970, in UTC. False when the text is not such a number.
bool day_of(const char* text, std::tm& day) {
    if (*text < '0' || *text > '9') return false;
    char* end = nullptr;
    errno = 0;
    const long long seconds = std::strtoll(text, &end, 10);
    const auto moment = static_cast<std::time_t>(seconds);
    return errno == 0 && *end == '\0' && platform::utc_time(moment, day) &&
           day.tm_year <= LAST_YEAR - FIRST_YEAR;
}

// The moment that SOURCE_DATE_EPOCH names, so that outputs made anywhere can be compared. False
// when it is not set or makes no sense.
bool pinned_day(std::tm& day) {
    const char* text = platform::environment_variable("SOURCE_DATE_EPOCH");
    if (text == nullptr || *text == '\0') return false;
    if (day_of(text, day)) return true;
    report_once(text);
    return false;
}

}  // namespace

std::int32_t host_date() {
    std::tm day{};
    if (!pinned_day(day)) {
        const std::time_t now = std::time(nullptr);
        platform::local_time(now, day);
    }
    return as_number(day);
}
