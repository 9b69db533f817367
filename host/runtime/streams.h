// What the embedding program can ask of the file service.
#pragma once

#include <optional>
#include <string>

#include "host/runtime/memory_report.h"

namespace host {

struct WriteFailure {
    std::string file;
    int error;  // the system's error number
};

// The oldest write failure (found while writing, cutting or closing) not yet taken, on any stream;
// taking it forgets it. The file's name is empty when there was no memory to remember it.
RUNTIME_API std::optional<WriteFailure> take_write_failure();

// Makes host_fread hand out at most this many bytes a call (0 = as many as asked for), so that
// tests can cut input anywhere.
RUNTIME_API void limit_read_size(std::size_t bytes);

// Number of streams opened with host_fopen and not yet closed.
RUNTIME_API std::size_t open_streams();

}  // namespace host
