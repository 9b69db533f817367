// FILE STATUS: the outcome of an operation for the program.
#pragma once

#include <cstdint>
#include <string>

#include "gnucobol/runtime.h"

namespace gnucobol {

// The two digits as one number.
enum class Status : std::uint8_t {
    done = 0,
    doubtful_data = 4,
    optional_missing = 5,
    no_reel = 7,
    at_end = 10,
    permanent_error = 30,
    no_space = 34,
    not_found = 35,
    not_permitted = 37,
    attributes_differ = 39,
    already_open = 41,
    wrong_length = 44,
    read_after_end = 46,
    not_open_for_input = 47,
    not_open_for_output = 48,
    not_open_for_update = 49,
    in_use = 61
};

struct Result {
    Status status = Status::done;
    std::string reason;  // of a failure, for the message; may be empty
};

// Stores a status as the runtime does for its own files: in the file, in the item of FILE STATUS
// (may be null), and as the exception that AT END and declaratives look at.
void set_status(cob_file& file, cob_field* item, Status status);

// The status and the reason text of a failed system call at OPEN.
Result refusal(int system_error);

}  // namespace gnucobol
