#include "tools/sxml/jobs/jobs_option.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "platform/processes.h"
#include "tools/sxml/failure.h"
#include "tools/sxml/options/options.h"

namespace command {

namespace {

constexpr unsigned MOST_JOBS = 1024;
constexpr std::uint64_t PARTS_FOR_EACH = 8;

}  // namespace

void add_jobs_option(CLI::App& command, std::optional<unsigned>& jobs) {
    CLI::Option* const option = command.add_option(
        "--jobs", jobs,
        "how many processes share the work, with the same result (default: as many as "
        "there are processors for large files, 1 for others)");
    limit_to_numbers(*option->option_text("N"), 1, MOST_JOBS);
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
