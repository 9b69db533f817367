#include "fsi/xml/sxml/record_output.h"

#include <algorithm>
#include <cstring>

#include "fsi/xml/sxml/xml_output.h"

RecordOutput::RecordOutput(HostStream* stream, std::int32_t encoding)
    : stream_(stream), encoding_(encoding), start_(host_ftell(stream)) {}

void RecordOutput::flush() {
    if (used_ == 0) return;
    host_fwrite(bytes_, 1, used_, stream_);
    start_ += static_cast<std::uint32_t>(used_);
    used_ = 0;
}

void RecordOutput::make_room(std::size_t size) {
    if (size > CAPACITY - used_) flush();
}

void RecordOutput::go_back(std::uint32_t position) {
    const std::uint32_t kept = position - start_;
    if (kept <= used_) {
        used_ = kept;
        return;
    }
    used_ = 0;
    start_ = position;
    host_fseek(stream_, position);
}

void RecordOutput::write(std::string_view text) {
    while (!text.empty()) {
        // A line feed grows into two bytes.
        const std::string_view run = {text.data(), std::min(text.size(), CAPACITY / 2)};
        make_room(2 * run.size());
        for (const char character : run) {
            if (character == '\n') bytes_[used_++] = '\r';
            bytes_[used_++] = character;
        }
        text.remove_prefix(run.size());
    }
}

void RecordOutput::write_line_end() {
    write("\n");
}

void RecordOutput::write_indent(int width) {
    for (auto left = static_cast<std::size_t>(indent_blanks(width)); left > 0;) {
        const std::size_t run = std::min(left, CAPACITY);
        make_room(run);
        std::memset(bytes_ + used_, ' ', run);
        used_ += run;
        left -= run;
    }
}

// The stream is asked where it stands, since the text writers count code units, not bytes.
bool RecordOutput::write_text(const XmlTextSpan& span) {
    flush();
    const bool written =
        xml_write_text(stream_, encoding_, &span, XML_TEXT_ESCAPE | XML_TEXT_TRIM) != 0;
    if (written) start_ = host_ftell(stream_);
    return written;
}
