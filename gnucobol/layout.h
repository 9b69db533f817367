// The record description of a file that a program opens.
#pragma once

#include <string>

#include "records/description.h"

namespace gnucobol {

struct LayoutRequest {
    std::string path;     // the file's name on the disk
    std::string fd;       // what the program calls it; may be empty
    std::string program;  // PROGRAM-ID; may be empty
    std::string source;   // name of the program's source file as it was compiled; may be empty
};

struct FileLayout {
    records::Description description;
    std::string source;    // the file it was made from, for messages
    std::string warning;   // the first; empty when there is none
    bool is_whole = true;  // false: some of the program's records are not described
};

// Looks at SXML_LAYOUT_name (a file, or FILE:FD), then for a description named like the file, then
// in the program's own source. Of a program with several files the one is taken that is called as
// in this program, or like the file on the disk. Throws std::runtime_error with a message of one
// line when there is none that can be used.
FileLayout find_layout(const LayoutRequest& request);

}  // namespace gnucobol
