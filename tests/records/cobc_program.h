// Programs compiled and run by a COBOL compiler: the judge of layouts and conditions.
#pragma once

#include <string>
#include <vector>

namespace layout_tests {

bool has_cobc();
// The lines that the program (free format) displays. A program that does not compile, or fails, is
// a failure of the test, and gives nothing.
std::vector<std::string> run_cobc(const std::string& program, const std::string& name,
                                  const std::string& options);

}  // namespace layout_tests
