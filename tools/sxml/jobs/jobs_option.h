// How many processes share a conversion.
#pragma once

#include <cstdint>
#include <optional>

namespace command {

class Command;

// Adds --jobs. `jobs` must live until the command line has been parsed; nothing: not given.
void add_jobs_option(Command command, std::optional<unsigned>& jobs);

// How many processes to use for an input of so many bytes: those asked for, or else one for each
// processor when the input has at least `worthwhile` bytes. Throws Failure (wrong usage) when more
// than one is asked for where the system has none.
unsigned jobs_for(std::optional<unsigned> jobs, std::uint64_t size, std::uint64_t worthwhile);

// The size of a part in bytes, so that all processes have work to the end: at most `largest`.
std::uint64_t part_size(std::uint64_t size, unsigned jobs, std::uint64_t largest);

}  // namespace command
