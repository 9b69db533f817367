#include "fsi/xml/sxml/writing/record_output.h"

#include <algorithm>
#include <cstring>

#include "fsi/xml/sxml/writing/item_tags.h"
#include "fsi/xml/sxml/writing/xml_output.h"

namespace {

constexpr std::size_t GROWTH = 2;  // a line feed becomes two bytes
constexpr std::size_t LONGEST_RUN = 512;
constexpr char BLANKS[] = "                                ";
constexpr std::size_t BLANKS_SIZE = sizeof BLANKS - 1;

// Copies a text, each line feed in it as a line end. Result: after its last byte.
char* put(char* at, std::string_view text) {
    for (const char character : text) {
        if (character == '\n') *at++ = '\r';
        *at++ = character;
    }
    return at;
}

}  // namespace

RecordOutput::RecordOutput(HostStream* stream, std::int32_t encoding)
    : stream_(stream), encoding_(encoding), start_(host_ftell(stream)) {}

void RecordOutput::flush() {
    if (used_ == 0) return;
    host_fwrite(bytes_, 1, used_, stream_);
    start_ += static_cast<std::uint32_t>(used_);
    used_ = 0;
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
        const std::string_view run = {text.data(), std::min(text.size(), LONGEST_RUN)};
        keep_to(put(room_for(GROWTH * run.size()), run));
        text.remove_prefix(run.size());
    }
}

void RecordOutput::write_line_end() {
    keep_to(put(room_for(2), "\n"));
}

void RecordOutput::write_indent(int width) {
    for (auto left = static_cast<std::size_t>(indent_blanks(width)); left > 0;) {
        const std::size_t run = std::min(left, BLANKS_SIZE);
        std::memcpy(room_for(BLANKS_SIZE), BLANKS, BLANKS_SIZE);
        used_ += run;
        left -= run;
    }
}

void RecordOutput::write_tag(std::string_view tag) {
    if (tag.size() <= TAG_READ_SIZE) {
        std::memcpy(room_for(TAG_READ_SIZE), tag.data(), TAG_READ_SIZE);
    } else {
        std::memcpy(room_for(tag.size()), tag.data(), tag.size());
    }
    used_ += tag.size();
}

// The stream is asked where it stands, since the text writers count code units, not bytes.
bool RecordOutput::write_text(const XmlTextSpan& span) {
    const std::string_view plain = plain_text(span);
    if (!plain.empty() && plain.size() <= CAPACITY) {
        std::memcpy(room_for(plain.size()), plain.data(), plain.size());
        used_ += plain.size();
        return true;
    }
    flush();
    const bool written =
        xml_write_text(stream_, encoding_, &span, XML_TEXT_ESCAPE | XML_TEXT_TRIM) != 0;
    if (written) start_ = host_ftell(stream_);
    return written;
}
