// A COBOL source as the compiler sees it: with COPY and REPLACE done, without comments except the
// directives for `sxml`.
#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace command::cob {

struct FileEntry {
    std::string name;  // of the FD, upper case
    bool has_reports = false;
};

struct Program {
    std::string name;              // PROGRAM-ID or FUNCTION-ID, upper case
    int container = -1;            // the program that it is nested in; -1 for none
    std::vector<FileEntry> files;  // SDs not among them
    bool has_statements = false;
    std::size_t statements_begin = 0;  // in the text: after PROCEDURE DIVISION and its period
    std::size_t statements_end = 0;
};

struct Source {
    struct Line {
        std::string file;
        int number;
    };
    std::string file;               // as named
    std::string text;               // free format
    std::vector<Line> lines;        // where each line of the text came from
    std::vector<Program> programs;  // in the order of the text

    // "FILE:LINE" of a line of the text, counted from 1.
    std::string place(int line) const;
};

// Makes one of the text that `cobc -E` gives. `file` is the source's name.
Source read_expanded(const std::string& file, const std::string& expanded, bool is_free);

// Names of the items that are written FROM to one of these records, or read INTO from this file, by
// the program and those nested in it; upper case.
std::set<std::string> moved_items(const Source& source, std::size_t program,
                                  const std::string& file, const std::set<std::string>& records);

}  // namespace command::cob
