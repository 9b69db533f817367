#include "records/source/text/source_hints.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace records {

namespace {

constexpr std::size_t INDICATOR = 6;  // column 7, counted from 0

bool is_ebcdic_text(unsigned char byte) {
    constexpr unsigned char BLANK = 0x40;
    const unsigned low = byte & 0x0FU;
    const bool is_letter = byte >= 0xC1 && byte <= 0xE9 && low >= 1 && low <= 9;
    const bool is_digit = byte >= 0xF0 && byte <= 0xF9;
    return byte == BLANK || is_letter || is_digit;
}

bool is_source(std::string_view line) {
    const LineKind kind = read_source_line(line, SourceFormat::fixed, false).kind;
    return kind == LineKind::source || kind == LineKind::continuation;
}

// The line has more than a card's number where the text of fixed format has ended.
bool goes_beyond(std::string_view line) {
    if (line.size() <= FIXED_MARGIN) return false;
    return line.substr(FIXED_MARGIN).find_first_not_of(" 0123456789") != std::string_view::npos;
}

bool has_late_comment_mark(const std::string& line) {
    const std::size_t start = line.find_first_not_of(' ');
    return start == INDICATOR + 1 && line[start] == '*' && line.compare(start, 2, "*>") != 0;
}

// What was cut off from this line, or from the line of source before it, explains an error here:
// the number of the line, or 0.
int line_cut_before(const std::vector<std::string_view>& lines, int line) {
    if (line < 1 || static_cast<std::size_t>(line) > lines.size()) return 0;
    if (goes_beyond(lines[static_cast<std::size_t>(line) - 1])) return line;
    while (--line > 0) {
        const std::string_view text = lines[static_cast<std::size_t>(line) - 1];
        if (is_source(text)) return goes_beyond(text) ? line : 0;
    }
    return 0;
}

// The hints about the columns of one file.
class ColumnHints {
  public:
    ColumnHints(const ReadFile& file, Diagnostics& diagnostics)
        : file_(file), diagnostics_(diagnostics) {}

    void add() {
        add_disputed_format();
        if (file_.format == SourceFormat::fixed) add_text_cut_off();
        if (file_.format == SourceFormat::variable && file_.is_detected) add_marks_read();
    }

  private:
    void add_disputed_format() {
        if (!file_.is_disputed) return;
        note_at(0, 0,
                file_.format == SourceFormat::free
                    ? "most lines look like free format, but some like fixed; to read columns 8 to "
                      "72 only, give --format fixed"
                    : "most lines look like fixed format, but some like free; to read all columns, "
                      "give --format free");
    }

    void add_text_cut_off() {
        for (const Diagnostic& one : diagnostics_.all()) {
            if (!is_error_here(one)) continue;
            const int line = line_cut_before(file_.file->lines, one.place.line);
            if (line == 0) continue;
            note_at(line, static_cast<int>(FIXED_MARGIN) + 1,
                    "in fixed format text ends in column 72; to read the text beyond it, give "
                    "--format variable");
            return;
        }
    }

    void add_marks_read() {
        for (const Diagnostic& one : diagnostics_.all()) {
            if (!is_error_here(one) || one.place.column <= static_cast<int>(FIXED_MARGIN)) continue;
            note_at(one.place.line, one.place.column,
                    "columns beyond 72 are read because lines are longer than 80; if they hold no "
                    "text but marks, give --format fixed");
            return;
        }
    }

    bool is_error_here(const Diagnostic& one) const {
        return one.severity == Severity::error && one.place.file == file_.file->name;
    }

    void note_at(int line, int column, std::string message) {
        Place place;
        place.file = file_.file->name;
        place.line = line;
        place.column = column;
        if (line > 0) place.text = shown_line(*file_.file, static_cast<std::size_t>(line));
        diagnostics_.note(std::move(place), std::move(message));
    }

    const ReadFile& file_;
    Diagnostics& diagnostics_;
};

// The first error in a line whose comment seems to begin a column too late.
std::optional<Place> late_comment(const Diagnostics& diagnostics) {
    for (const Diagnostic& one : diagnostics.all()) {
        if (one.severity == Severity::error && has_late_comment_mark(one.place.text)) {
            return one.place;
        }
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

void add_source_hints(const std::vector<ReadFile>& files, Diagnostics& diagnostics) {
    std::set<const SourceFile*> seen;  // a file may be copied more than once
    for (const ReadFile& file : files) {
        if (seen.insert(file.file.get()).second) ColumnHints(file, diagnostics).add();
    }
    if (auto place = late_comment(diagnostics)) {
        diagnostics.note(std::move(*place),
                         "the * of a comment must be in column 7; this one is in column 8");
    }
}

}  // namespace records
