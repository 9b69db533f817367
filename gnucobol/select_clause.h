// SELECT entries of a COBOL program: which file is assigned to what.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace gnucobol {

struct SelectClause {
    std::string file;    // name of the file in the program, upper case
    std::string target;  // the literal without quotation marks, or the word, as written
};

// The SELECT entries of a program's text, fixed or free format. What it COPYs is not looked at.
std::vector<SelectClause> select_clauses(std::string_view program);

}  // namespace gnucobol
