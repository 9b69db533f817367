// A conversion shared by several processes: each converts parts of the input, and puts what comes
// out into the one output, in the order of the parts.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "platform/shared_files.h"
#include "tools/sxml/jobs/part_result.h"
#include "tools/sxml/output/atomic_output.h"

namespace command {

struct PartsRun {
    unsigned jobs;               // workers, at least one
    std::uint64_t parts;         // at most so many
    const AtomicOutput& output;  // a file
    std::uint64_t position;      // where in it the first part goes

    // Called in a worker: converts a part into a file, which is empty. When it throws, the part
    // counts as not done.
    std::function<PartResult(std::uint64_t part, const platform::NamelessFile& file)> convert;
    // Called in this process for each part that is done, in their order. False: it counts as not
    // done. May throw.
    std::function<bool(PartResult&)> accept;
};

// How far it came.
struct PartsDone {
    std::uint64_t parts = 0;     // were accepted, and are in the output
    std::uint64_t position = 0;  // in the output, after them
    bool is_whole = false;       // all parts were accepted
};

// Converts parts until all are done or one is not. No worker is left when it returns or throws.
// When no workers can be made, nothing is done. Throws Failure when a worker ends before its time,
// and when the output cannot be written.
PartsDone convert_parts(const PartsRun& run);

}  // namespace command
