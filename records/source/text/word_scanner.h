// Cuts the lines of one source file into text words.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "records/copybook.h"
#include "records/source/text/source_line.h"
#include "records/source/text/text_word.h"

namespace records {

class WordScanner {
  public:
    // `format` is not `detect`. Sources and arena outlive the words.
    WordScanner(const SourceSet& sources, std::uint32_t inclusion, SourceFormat format,
                bool debugging_lines, TextArena& arena, Diagnostics& diagnostics);

    // The next word, nothing at the end.
    std::optional<TextWord> next();

    // The format at the place reached (compiler directives may change it).
    SourceFormat format() const { return format_; }

  private:
    bool next_line();
    bool enter_line(const SourceLine& line);
    void obey_compiler_directive(const SourceLine& line);
    // Index of the line that continues the current one, nothing when the next line begins anew.
    std::optional<std::size_t> continuation() const;
    void continue_at(std::size_t index);

    std::optional<TextWord> begin_directive();
    std::optional<TextWord> scan_comment();
    TextWord scan_one();
    TextWord scan_word();
    TextWord scan_literal(std::size_t start);
    bool scan_literal_part(std::string& text, char quote);
    bool continue_literal(std::string& text, char quote);

    bool at_gap(std::size_t at) const;
    bool at_separator(std::size_t at) const;
    TextWord take(WordKind kind, std::size_t length);
    Position position_at(std::size_t offset) const;

    const SourceSet& sources_;
    const SourceFile& file_;
    TextArena& arena_;
    Diagnostics& diagnostics_;
    std::uint32_t inclusion_;
    SourceFormat format_;
    bool debugging_lines_;

    std::size_t next_index_ = 0;  // of the line after the current one
    SourceLine line_;
    std::size_t at_ = 0;  // in line_.content
    bool space_before_ = true;
    bool in_directive_ = false;       // line_ is what follows "sxml:"
    bool directive_pending_ = false;  // "sxml:" itself comes next
};

}  // namespace records
