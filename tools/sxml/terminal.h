// Colours and line widths of messages and help on a terminal.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace command {

// Columns for text on standard output: those of the terminal, at least 40 and at most 100; 80 where
// there is none.
std::size_t text_width();

// Whether standard error is a terminal that is to be coloured: not one with TERM=dumb or without
// TERM, and never where NO_COLOR has a value.
bool has_colours();

// A message, of one line or more, with colours for what begins it, "sxml: " or "sxml: warning: ",
// and for the caret below a source line. `is_failure`: it ends the run.
std::string coloured(std::string_view message, bool is_failure);

// Breaks a text at its spaces into lines of `width` columns at most; words that are longer stay
// whole. Each line after the first begins with `indent` spaces, which count.
std::string wrapped(std::string_view text, std::size_t width, std::size_t indent);

}  // namespace command
