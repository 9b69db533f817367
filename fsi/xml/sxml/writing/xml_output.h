// Small tools for writing markup that is made up of several pieces.
#pragma once

#include <cstdint>
#include <initializer_list>

#include "host/files.h"

// A file being written, and the host encoding code that every write to it passes on.
struct XmlOutput {
    HostStream* stream;
    std::int32_t encoding;
};

// Writes NUL-terminated pieces one after the other; each "\n" becomes a line end.
void write_pieces(const XmlOutput& output, std::initializer_list<const char*> pieces);

// Writes the indentation of an item or element: as many blanks as the width says, but at least one.
// A negative width counts like a positive one.
void write_indent(const XmlOutput& output, int width);
constexpr int indent_blanks(int width) {
    const int blanks = width < 0 ? -width : width;
    return blanks > 1 ? blanks : 1;
}

// A number as decimal text.
class NumberText {
  public:
    explicit NumberText(std::int32_t number);
    const char* text() const { return text_; }

  private:
    char text_[12];
};

// Today's date as yyyy/mm/dd.
class DateText {
  public:
    DateText();
    const char* text() const { return text_; }

  private:
    char text_[40];
};
