// The file control description: what the COBOL runtime tells a file handler about one file, and
// what it is told back.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

// The runtime's header needs <cstddef> and <cstdio> before it.
// clang-format off
#include <libcob.h>
// clang-format on

namespace gnucobol {

enum class Operation {
    open_input,
    open_output,
    open_other,  // I-O, EXTEND, REVERSED
    close,
    read_next,
    write,
    update,    // REWRITE, DELETE
    position,  // START, READ PREVIOUS, random READ
    delete_file,
    other
};

Operation operation_of(const unsigned char* opcode);
// The verb as a programmer writes it, for messages.
const char* verb_of(Operation operation);

// FILE STATUS, the two digits as one number.
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
    locked = 38,
    attributes_differ = 39,
    already_open = 41,
    not_open = 42,
    wrong_length = 44,
    read_after_end = 46,
    not_open_for_input = 47,
    not_open_for_output = 48,
    not_open_for_update = 49
};
void set_status(FCD3& fcd, Status status);
// The runtime takes a file for open when its own record of the status does not say otherwise.
void set_status(cob_file& file, Status status);

// The runtime's own record of a file that is not open; null when the runtime does not show it. It
// is marked as closed.
cob_file* find_program_file(FCD3& fcd);

// Fills in the description of a file that is not open from the runtime's record of it.
void renew_description(FCD3& fcd, const cob_file& file);

// The name that the file is assigned to, before the runtime's mapping. That of the description is
// out of date when an OPEN has failed and the program has then changed the name.
std::string assigned_name(const FCD3& fcd);
std::string assigned_name(const cob_file& file);
bool is_sequential(const FCD3& fcd);
bool is_optional(const FCD3& fcd);

// How a file is closed: CLOSE ... WITH LOCK, WITH NO REWIND, and REEL or UNIT, which leave it open.
enum class Closing { plain, with_lock, no_rewind, reel };
Closing closing_of(const FCD3& fcd);

// Record lengths in bytes.
std::uint32_t shortest_record(const FCD3& fcd);
std::uint32_t longest_record(const FCD3& fcd);
std::uint32_t current_record(const FCD3& fcd);
void set_current_record(FCD3& fcd, std::uint32_t length);

}  // namespace gnucobol
