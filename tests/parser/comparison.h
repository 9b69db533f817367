// Parsing a document through the parser API, whole and record by record, and what differs from
// Expat alone.
#pragma once

#include <string>

#include "tests/parser/bare_expat.h"

// How a parse went.
struct Outcome {
    std::string tree;     // canonical
    std::string details;  // everything the API tells, for comparing one parse with another
    int file_error = 0;
    int expat_error = 0;
};

// `source` and `length` are those of xml_open_file.
Outcome parse_whole(const char* source, std::size_t length);
// Leaves every record in the tree; finding two where one was due is noted in `details`.
Outcome parse_by_record(const char* source, std::size_t length);

// What differs in verdict, error code, elements, attributes and text; empty when nothing does.
std::string differences(const char* source, std::size_t length, const BareResult& bare);
