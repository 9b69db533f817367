// Libraries that end the program where they have no memory.
#pragma once

#include <exception>

namespace gnucobol {

// While it lives, std::terminate() for want of memory says so and ends the program as an error
// does: with a failure status, and with documents as they were before. Otherwise it does what it
// did before.
class TerminationTold {
  public:
    TerminationTold();
    ~TerminationTold();
    TerminationTold(const TerminationTold&) = delete;
    TerminationTold& operator=(const TerminationTold&) = delete;
};

}  // namespace gnucobol
