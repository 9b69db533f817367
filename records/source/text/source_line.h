// What the columns of a source line mean in each source format.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>

#include "records/copybook.h"
#include "records/source/text/source_set.h"

namespace records {

enum class LineKind { blank, comment, source, continuation, directive };

// A line taken apart. `content` is the text in the program area (for a comment: what follows the
// comment sign; for a compiler directive: the whole of it), without trailing blanks.
struct SourceLine {
    LineKind kind = LineKind::blank;
    std::string_view content;
    std::size_t column = 1;  // of content's first character
};

constexpr std::size_t FIXED_MARGIN = 72;  // last column of the program area in fixed format

// `line` has its tabs expanded.
SourceLine read_source_line(std::string_view line, SourceFormat format, bool debugging_lines);

// The format that a compiler directive line (>>SOURCE FORMAT, $SET SOURCEFORMAT) switches to;
// nothing when it says something else.
std::optional<SourceFormat> format_directive(std::string_view content);

struct FormatFinding {
    std::optional<SourceFormat> format;  // nothing when the lines fit any format
    bool is_disputed = false;            // some lines tell another format
};

// Tells fixed, free and variable format apart by what most lines of a file show.
FormatFinding detect_source_format(const SourceFile& file);

// A file, and the format that it was read in (the last one, when it switches).
struct ReadFile {
    std::shared_ptr<const SourceFile> file;
    SourceFormat format = SourceFormat::fixed;
    bool is_detected = false;  // neither asked for nor said by a directive
    bool is_disputed = false;  // detected, while some lines tell another format
};

}  // namespace records
