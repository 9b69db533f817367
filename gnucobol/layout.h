// The record description of a file that a program opens.
#pragma once

#include <cstdint>
#include <string>

#include "host/records/description.h"

namespace gnucobol {

struct LayoutRequest {
    std::string assigned;  // the name that the program assigns
    std::string path;      // the name on the disk
    std::string program;   // name of the program's source file as it was compiled; may be empty
    std::uint32_t record_length;  // of the program's longest record, bytes
};

struct FileLayout {
    records::Description description;
    std::string source;  // the file it was made from, for messages
};

// Looks at SXML_LAYOUT_name (a file, or FILE:FD), then for a description named like the file, then
// in the program's own source. Of a program with several files the one is taken that is assigned to
// this name, or is called like it, or alone has records of this length.
// Throws std::runtime_error with a message of one line when there is none that can be used.
FileLayout find_layout(const LayoutRequest& request);

}  // namespace gnucobol
