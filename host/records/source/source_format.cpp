// Tells the source format of a file from how its lines use the columns.
#include <algorithm>

#include "host/records/source/source_line.h"
#include "host/records/source/source_set.h"
#include "host/records/source/text_case.h"

namespace records {

namespace {

constexpr std::size_t SEQUENCE_WIDTH = 6;
constexpr std::size_t LONGEST_CARD = 80;
constexpr std::size_t LINES_LOOKED_AT = 2000;

enum class Evidence { none, fixed, free, beyond_card };

bool is_indicator(char c) {
    return c == ' ' || c == '*' || c == '/' || c == '-' || upper(c) == 'D';
}

// A level number and a blank: the start of a data description entry.
bool starts_with_level(std::string_view text) {
    std::size_t digits = 0;
    while (digits < text.size() && is_digit(text[digits])) ++digits;
    return digits >= 1 && digits <= 2 && digits < text.size() && text[digits] == ' ';
}

// The line's first character stands in column 7.
Evidence judge_indicator(std::string_view trimmed) {
    if (trimmed.starts_with("*>")) return Evidence::none;
    if (!is_indicator(trimmed.front())) return Evidence::free;
    if (upper(trimmed.front()) != 'D') return Evidence::fixed;
    return trimmed.size() > 1 && is_letter(trimmed[1]) ? Evidence::free : Evidence::none;
}

Evidence judge_sequence_area(std::string_view line, std::string_view trimmed) {
    const std::string_view area = line.substr(0, SEQUENCE_WIDTH);
    if (std::all_of(area.begin(), area.end(), is_digit)) return Evidence::fixed;
    if (trimmed.starts_with("*>") || trimmed.starts_with("*")) return Evidence::free;
    if (starts_with_level(trimmed)) return Evidence::free;
    if (line.size() <= SEQUENCE_WIDTH) return Evidence::free;
    return is_indicator(line[SEQUENCE_WIDTH]) ? Evidence::fixed : Evidence::free;
}

Evidence judge(std::string_view line) {
    const std::string_view trimmed = without_leading_blanks(line);
    if (trimmed.empty() || trimmed.starts_with(">>") || trimmed.starts_with("$")) {
        return Evidence::none;
    }
    const std::size_t start = line.size() - trimmed.size();
    if (start < SEQUENCE_WIDTH) return judge_sequence_area(line, trimmed);
    if (start == SEQUENCE_WIDTH) return judge_indicator(trimmed);
    if (line.size() > LONGEST_CARD && !trimmed.starts_with("*")) return Evidence::beyond_card;
    return Evidence::none;
}

}  // namespace

std::optional<SourceFormat> detect_source_format(const SourceFile& file) {
    int fixed = 0;
    int free = 0;
    int beyond = 0;
    const std::size_t count = std::min(file.lines.size(), LINES_LOOKED_AT);
    for (std::size_t i = 0; i < count; ++i) {
        switch (judge(file.lines[i])) {
            case Evidence::none:
                break;
            case Evidence::fixed:
                ++fixed;
                break;
            case Evidence::free:
                ++free;
                break;
            case Evidence::beyond_card:
                ++beyond;
                break;
        }
    }
    if (free > fixed) return SourceFormat::free;
    if (beyond > 0) return SourceFormat::variable;
    if (fixed > 0) return SourceFormat::fixed;
    return std::nullopt;
}

}  // namespace records
