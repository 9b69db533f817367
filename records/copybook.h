// The copybook compiler's front: from source text to the syntax tree of a record description.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "records/data_item.h"
#include "records/diagnostics.h"

namespace records {

enum class SourceFormat { detect, fixed, free, variable };

// A directive from outside the source, for users who must not change it: the text of a comment
// `sxml: ...` before the item. It replaces a directive of its kind in the source.
struct ItemDirective {
    std::string item;       // its name, qualified with OF or IN where needed
    std::string directive;  // such as "when KIND = "A"", "name tax-id" or "hide"
};

struct CopybookOptions {
    SourceFormat format = SourceFormat::detect;
    std::vector<std::string>
        copy_path;        // folders searched for COPY, after the including file's own
    std::string fd;       // FD (or SELECT) name, or 01 record name, to take from a whole program
    std::string program;  // PROGRAM-ID of the program meant when several in a file have such an FD;
                          // empty: any
    int tab_width = 8;
    bool debugging_lines = false;           // D in column 7 is source, not comment
    std::vector<std::string> more_files;    // copybooks with more records of the same file
    std::vector<ItemDirective> directives;  // applied when all have been read
    // What the user calls options that were given and say how a source becomes a layout. A layout
    // that is none any more takes none of them.
    std::vector<std::string> for_sources;
};

// False for a shell's `<(...)`: what is read there has no name but a number of the shell's choice.
bool names_itself(std::string_view file);

// Reads a file and what it copies and parses the data descriptions in it. Errors and warnings go to
// `diagnostics`; parsing goes on after an error to find more of them. Result: the tree, also when
// there were errors (then it holds what was understood); nothing when the file cannot be read or
// holds no data description at all.
std::optional<RecordSource> parse_copybook_file(const std::string& file,
                                                const CopybookOptions& options,
                                                Diagnostics& diagnostics);

// The same for text in memory; `name` stands for the file in messages.
std::optional<RecordSource> parse_copybook_text(std::string_view text, const std::string& name,
                                                const CopybookOptions& options,
                                                Diagnostics& diagnostics);

// Adds the records of `options.more_files` and applies `options.directives`. Errors name the file,
// or the item.
void complete_source(RecordSource& source, const CopybookOptions& options,
                     Diagnostics& diagnostics);

}  // namespace records
