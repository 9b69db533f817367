#include "fsi/xml/sxml/writing/xml_output.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <iterator>

#include "fsi/xml/elements/text_output.h"

void write_pieces(const XmlOutput& output, std::initializer_list<const char*> pieces) {
    for (const char* piece : pieces) xml_write_string(output.stream, output.encoding, piece, 0);
}

void write_indent(const XmlOutput& output, int width) {
    static constexpr char BLANKS[] = "                                ";
    constexpr int RUN = static_cast<int>(sizeof BLANKS - 1);
    for (int left = indent_blanks(width); left > 0; left -= RUN) {
        const XmlTextSpan span = {BLANKS, static_cast<std::uint64_t>(std::min(left, RUN)),
                                  HOST_ENCODING_NONE};
        xml_write_text(output.stream, output.encoding, &span, 0);
    }
}

NumberText::NumberText(std::int32_t number) {
    *std::to_chars(std::begin(text_), std::end(text_) - 1, number).ptr = '\0';
}

DateText::DateText() {
    const std::int32_t date = host_date();
    std::snprintf(text_, sizeof text_, "%04d/%02d/%02d", date / 10000, date / 100 % 100,
                  date % 100);
}
