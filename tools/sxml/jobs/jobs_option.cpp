#include "tools/sxml/jobs/jobs_option.h"

#include <algorithm>

#include "platform/processes.h"
#include "tools/sxml/command.h"
#include "tools/sxml/failure.h"
#include "tools/sxml/options/options.h"

namespace command {

namespace {

constexpr unsigned MOST_JOBS = 1024;
constexpr std::uint64_t PARTS_FOR_EACH = 8;

}  // namespace

void add_jobs_option(Command command, std::optional<unsigned>& jobs) {
    command.add_number(
        "--jobs", [&jobs](std::uint64_t number) { jobs = static_cast<unsigned>(number); },
        {.smallest = 1, .largest = MOST_JOBS},
        "how many processes share the work, with the same result (default: as many as "
        "there are processors for large files, 1 for others)");
}

unsigned jobs_for(std::optional<unsigned> jobs, std::uint64_t size, std::uint64_t worthwhile) {
    if (!platform::has_process_copies()) {
        if (jobs.value_or(1) > 1) {
            fail_usage(
                "--jobs: on this system one process does all the work; leave the option out");
        }
        return 1;
    }
    if (jobs) return *jobs;
    return size >= worthwhile ? std::min(platform::usable_processors(), MOST_JOBS) : 1;
}

std::uint64_t part_size(std::uint64_t size, unsigned jobs, std::uint64_t largest) {
    return std::clamp<std::uint64_t>(size / (PARTS_FOR_EACH * jobs), 1, largest);
}

}  // namespace command
