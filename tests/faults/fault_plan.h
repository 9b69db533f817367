// The calls that are to fail in a program into which the library of failures is loaded, set by
// environment variables:
//   SXML_FAULT        KIND N [+] [ERRNO]: the N-th call of the kind fails, with + every later one
//                     as well. KIND is one of Kind; ERRNO is a number.
//   SXML_FAULT_PAGE   a file of 16 bytes for the two counts of Counts, as they are at the end
//   SXML_FAULT_TRACE  prints where each failing call stands
#pragma once

#include <cstdint>

namespace faults {

// link: reading where a symbolic link leads.
enum class Kind : std::uint8_t { none, memory, read, write, sync, rename, open, link };

struct Counts {
    std::uint64_t calls;   // of the kind
    std::uint64_t failed;  // of these
};

struct Plan {
    Kind kind;
    std::uint64_t first;  // from 1; 0: none fails, calls are counted
    bool goes_on;
    int error;  // errno of the failing call
};

// Read once, when it is first asked for. Takes no memory.
const Plan& plan();
// Counts a call. True when it shall fail.
bool fails(Kind kind);
// Counting stops inside, in this thread.
class Suspension {
  public:
    Suspension();
    Suspension(const Suspension&) = delete;
    Suspension& operator=(const Suspension&) = delete;
    ~Suspension();
};

}  // namespace faults
