// Libraries that end the program when memory is exhausted.
#pragma once

#include <exception>

namespace gnucobol {

// While it lives, std::terminate() because of exhausted memory says so and ends the program like an
// error: with a failure status, and with documents unchanged. In other cases the previous handler
// runs.
class TerminationTold {
  public:
    TerminationTold();
    ~TerminationTold();
    TerminationTold(const TerminationTold&) = delete;
    TerminationTold& operator=(const TerminationTold&) = delete;
};

}  // namespace gnucobol
