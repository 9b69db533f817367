// The words after `sxml cob`: those of cobc, and a few of its own.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

namespace command::cob {

struct Words {
    std::vector<std::string> all;      // for cobc: everything but what is for `sxml cob` alone
    std::vector<std::string> reading;  // options that say how a source is read
    std::vector<std::string>
        compiling;                     // those and the others that make a difference to the C code
    std::vector<std::string> sources;  // COBOL
    std::set<std::string> left_out;    // FDs of --no-xml, upper case
    std::map<std::string, std::string> document_names;  // of --name, by FD in upper case; by "" the
                                                        // name for the only FD
    bool says_what_to_make = false;                     // -x, -m, -c ...
    bool compiles = true;  // false: cobc is only queried (--version, -E ...)
};

// Throws Failure (usage) for a --name or --no-xml without its value.
Words split_words(const std::vector<std::string>& given);

}  // namespace command::cob
