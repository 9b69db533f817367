// The record descriptions of the files of a source, as they are bound into the program.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "tools/sxml/cob/source.h"
#include "tools/sxml/cob/words.h"

namespace command::cob {

struct DescribedFile {
    std::string program;          // upper case
    std::string name;             // of the FD
    std::string description;      // JSON; empty when a document was not wanted or cannot be meant
    std::string element;          // the document element that was asked for; may be empty
    std::string variable_record;  // the only record whose length varies; empty when none is
    std::string plain_records;    // those of which no directive says when they are meant: "A B "
    bool has_reports = false;
};

struct DescribedSource {
    std::string file;  // as named
    std::vector<Program> programs;
    std::vector<DescribedFile> files;
    std::map<std::string, std::string> records;  // names of records by the variable in the C code
};

// Describes every file of a source. Throws Failure, with the place in the source, for a file that
// cannot be described as the compiler has it, and an empty Failure when the compiler rejects the
// source: what it says has been printed.
DescribedSource describe_source(const std::string& file, const Words& words);

}  // namespace command::cob
