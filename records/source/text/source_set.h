// The source files of one compilation, and positions in them.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "records/diagnostics.h"

namespace records {

// A place, small enough to be kept with every word. `inclusion` says which inclusion of a file it
// is in, so the way through COPY can be told. Lines and columns count from 1; line 0 is not a
// place.
struct Position {
    std::uint32_t inclusion = 0;
    std::uint32_t line = 0;
    std::uint32_t column = 0;
};

// A file's text, cut into lines with tabs expanded.
struct SourceFile {
    std::shared_ptr<const std::string> name;
    std::string text;
    std::deque<std::string> expanded;  // lines that had tabs
    std::vector<std::string_view> lines;
};

// Cuts a text into lines: LF or CR LF ends, a byte order mark in front skipped, the end at Ctrl-Z.
std::shared_ptr<const SourceFile> make_source_file(std::string name, std::string text,
                                                   int tab_width);

// A line, counted from 1, for a message: its beginning, when it is very long.
std::string shown_line(const SourceFile& file, std::size_t line);

class SourceSet {
  public:
    // Registers one more inclusion of a file, copied by the statement at `from` (line 0: not
    // copied). Gives its number.
    std::uint32_t include(std::shared_ptr<const SourceFile> file, Position from);

    const SourceFile& file(std::uint32_t inclusion) const { return *inclusions_[inclusion].file; }
    std::size_t inclusion_count() const { return inclusions_.size(); }
    Place place(Position position) const;

  private:
    struct Inclusion {
        std::shared_ptr<const SourceFile> file;
        std::shared_ptr<const Place> from;
    };
    std::vector<Inclusion> inclusions_;
};

}  // namespace records
