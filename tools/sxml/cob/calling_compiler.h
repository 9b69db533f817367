// The COBOL compiler that calls us in the place of its C compiler.
#pragma once

#include <string>
#include <vector>

namespace command::cob {

// The words after `cobc` that made this C code: those of the process that has called us. When there
// is no such process, those of a comment in the code, in which words with blanks are several.
std::vector<std::string> words_of_cobc(const std::string& code);

}  // namespace command::cob
