// Text words: the units that COPY REPLACING and REPLACE work on.
#pragma once

#include <deque>
#include <string>
#include <string_view>

#include "records/source/text/source_set.h"

namespace records {

enum class WordKind {
    word,             // letters, digits, hyphens and picture symbols
    literal,          // with its quotes and its prefix
    period,           // the separator, not a point inside a number or picture
    open,             // (
    close,            // )
    colon,            // :
    symbol,           // = < > &
    pseudo,           // ==
    directive_begin,  // "sxml:" at the start of a comment
    directive_end,
    broken  // text that could not be read; `text` says why, reported only when it is needed
};

struct TextWord {
    WordKind kind = WordKind::word;
    bool space_before = true;
    std::string_view text;  // in the source file or in the arena
    Position position;
};

// Keeps texts that stand in no file as they are: continued words, replaced words, messages.
class TextArena {
  public:
    std::string_view keep(std::string text) { return texts_.emplace_back(std::move(text)); }

  private:
    std::deque<std::string> texts_;
};

}  // namespace records
