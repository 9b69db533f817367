// The options of sxml_open.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "conversion/fields/blank_record.h"
#include "conversion/formats/record_format.h"
#include "conversion/problem.h"
#include "records/copybook.h"
#include "records/description.h"

namespace library {

struct FileOptions {
    std::optional<bool> is_document;
    std::string encoding;
    conversion::RecordFormat format;
    bool detects_format = false;
    std::uint64_t skip = 0;      // bytes at the start of a record file that belong to no record
    std::uint64_t skip_end = 0;  // and at its end
    std::string record_path;     // of a document's records; empty: in the document element
    bool is_strict = false;      // what would be a warning fails the record
    conversion::BlankFill fill = conversion::BlankFill::by_type;
    records::CopybookOptions copybook;
    records::LayoutOptions layout;
    std::vector<std::pair<std::string, std::string>> settings;
};

// Reads "NAME=VALUE" texts, ended by null. A problem names the option and what it takes.
conversion::Result<FileOptions> read_options(const char* const* options);

}  // namespace library
