// Where the records are in a copybook or program.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "records/source/parse_context.h"
#include "records/source/tokens.h"

namespace records {

struct TokenRange {
    std::size_t begin = 0;
    std::size_t end = 0;
};

struct RecordSpan {
    std::string name;  // empty when the record is implied or unnamed
    TokenRange tokens;
};

// The records of one FD or SD, of one section, or of a bare copybook.
struct RecordArea {
    enum class Kind { copybook, file, sort_file, storage } kind = Kind::copybook;
    std::string name;     // of the FD or SD
    std::string program;  // PROGRAM-ID of the program it stands in; empty when there was none
    TokenRange tokens;
    std::vector<RecordSpan> records;
    int record_contains = 0;  // largest number of the RECORD clause; 0 when there is none
};

struct ProgramStructure {
    std::vector<RecordArea> areas;
    bool is_program = false;  // divisions or sections were seen
};

// Finds the areas; takes SPECIAL-NAMES and constants into the context on the way.
ProgramStructure find_structure(const std::vector<Token>& tokens, ParseContext& context);

}  // namespace records
