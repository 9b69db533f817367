// What one record writes on its way to the output file. Pieces of markup and field texts without
// anything to escape are short, so they are gathered in a buffer on the stack and handed to the
// stream in runs; other field texts go out through the text writers. Dropping an empty element
// often only takes back what is still here.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fsi/xml/elements/text_output.h"

class RecordOutput {
  public:
    RecordOutput(HostStream* stream, std::int32_t encoding);

    // Low 32 bits of the output position, gathered bytes included.
    std::uint32_t position() const { return start_ + static_cast<std::uint32_t>(used_); }
    // Takes back everything written since the output stood at `position`.
    void go_back(std::uint32_t position);

    // Markup, and texts that need no escaping; each line feed becomes a line end.
    void write(std::string_view text);
    void write_line_end();
    void write_indent(int width);
    void write_tag(std::string_view tag);  // of ItemTags
    // A field's text, trimmed and escaped. Result: whether anything was left to write.
    bool write_text(const XmlTextSpan& span);
    // Hands everything gathered to the stream.
    void flush();

    // Where up to `size` bytes, at most CAPACITY, may be put; keep_to then says where they end.
    char* room_for(std::size_t size) {
        if (size > CAPACITY - used_) flush();
        return bytes_ + used_;
    }
    // Where room ends.
    const char* end() const { return bytes_ + CAPACITY; }
    void keep_to(const char* end) { used_ = static_cast<std::size_t>(end - bytes_); }
    static constexpr std::size_t CAPACITY = 8192;

  private:
    HostStream* stream_;
    std::int32_t encoding_;
    std::uint32_t start_;  // output position of the first byte gathered
    std::size_t used_ = 0;
    char bytes_[CAPACITY];
};
