// The record description of a file that a program opens.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "gnucobol/runtime.h"
#include "records/description.h"
#define SXML_COB_ADAPTER
#include "sxml/sxml_cob.h"

namespace gnucobol {

// Where in the program a statement stands.
struct Where {
    const sxml_cob_source* sources;
    const char* source;
};

struct FileLayout {
    records::Description description;
    std::string origin;  // what it was made from, for messages
    bool is_bound;       // into the program by `sxml cob`
    // Of each layout: the name of its 01, upper case, and whether a directive says when it is
    // meant.
    struct Record {
        std::string name;
        bool has_condition;
    };
    std::vector<Record> records;
    std::string element;          // the document element to write; empty: as described
    std::string variable_record;  // the only 01 whose length varies; empty when none is
};

// What `sxml cob` has bound in for the file; null when the program has no such file.
const sxml_cob_file* find_bound_file(const Where& where, const cob_file& file);

// What SXML_LAYOUT_name names (a file, or FILE:FD), a description beside the document with its name
// (.xfd), or else what was bound into the program. Throws std::runtime_error with a message of one
// line when that cannot be used.
FileLayout find_layout(const std::string& path, const sxml_cob_file& bound);

// The name of the record in a WRITE, from its expression in the C code; empty when it is not known.
std::string record_written(const Where& where, const char* expression, const FileLayout& layout);

}  // namespace gnucobol
