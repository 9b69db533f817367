#include "records/source/text/source_hints.h"

#include <algorithm>
#include <optional>

namespace records {

namespace {

constexpr std::size_t INDICATOR = 6;      // column 7, counted from 0
constexpr std::size_t LAST_COLUMN = 72;   // of the text in fixed format
constexpr std::size_t LONGEST_CARD = 80;  // longer lines are not taken for fixed format

bool is_ebcdic_text(unsigned char byte) {
    constexpr unsigned char BLANK = 0x40;
    const unsigned low = byte & 0x0FU;
    const bool is_letter = byte >= 0xC1 && byte <= 0xE9 && low >= 1 && low <= 9;
    const bool is_digit = byte >= 0xF0 && byte <= 0xF9;
    return byte == BLANK || is_letter || is_digit;
}

// A line in the form of fixed format that goes on where fixed format has ended.
bool goes_beyond(const std::string& line, SourceFormat format) {
    if (format != SourceFormat::detect && format != SourceFormat::fixed) return false;
    const bool is_card = format == SourceFormat::fixed || line.size() <= LONGEST_CARD;
    return is_card && line.size() > LAST_COLUMN && line.find_first_not_of(' ') >= INDICATOR;
}

bool has_late_comment_mark(const std::string& line) {
    const std::size_t start = line.find_first_not_of(' ');
    return start == INDICATOR + 1 && line[start] == '*' && line.compare(start, 2, "*>") != 0;
}

// The first error in a line of which `is_so` is true.
template <class Property>
std::optional<Place> first_place(const Diagnostics& diagnostics, Property is_so) {
    for (const Diagnostic& one : diagnostics.all()) {
        if (one.severity == Severity::error && is_so(one.place.text)) return one.place;
    }
    return std::nullopt;
}

}  // namespace

bool looks_like_ebcdic(std::string_view text) {
    const auto is_text = [](char c) { return is_ebcdic_text(static_cast<unsigned char>(c)); };
    const auto is_ascii_blank = [](char c) { return c == ' ' || c == '\n'; };
    const auto count = std::count_if(text.begin(), text.end(), is_text);
    return count * 2 > static_cast<std::ptrdiff_t>(text.size()) &&
           std::count_if(text.begin(), text.end(), is_ascii_blank) * 10 < count;
}

void add_source_hints(SourceFormat format, Diagnostics& diagnostics) {
    auto place = first_place(
        diagnostics, [format](const std::string& line) { return goes_beyond(line, format); });
    if (place) {
        place->column = LAST_COLUMN + 1;
        diagnostics.note(*place,
                         "in fixed format text ends in column 72; in variable and free format it "
                         "goes on");
    }
    if ((place = first_place(diagnostics, has_late_comment_mark))) {
        diagnostics.note(*place, "the * of a comment must be in column 7; this one is in column 8");
    }
}

}  // namespace records
