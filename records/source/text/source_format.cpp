// Tells the source format of a file from how its lines use the columns.
#include <algorithm>

#include "records/source/text/source_line.h"
#include "records/source/text/source_set.h"
#include "records/source/text/text_case.h"

namespace records {

namespace {

constexpr std::size_t SEQUENCE_WIDTH = 6;
constexpr std::size_t LONGEST_CARD = 80;

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

bool is_number(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), is_digit);
}

// A comment in free format, and in fixed format too if column 7 says so: "*******" from column 1.
bool is_comment_in_both(std::string_view line) {
    return line.front() == '*' && line.size() > SEQUENCE_WIDTH &&
           (line[SEQUENCE_WIDTH] == '*' || line[SEQUENCE_WIDTH] == '/');
}

// A sequence number in columns 73 to 80, after the text.
bool is_numbered_card(std::string_view line) {
    return line.size() == LONGEST_CARD && is_number(line.substr(FIXED_MARGIN));
}

// The line has text in columns 1 to 6: a sequence number or a mark, or COBOL text in free format.
Evidence judge_sequence_area(std::string_view line, std::string_view trimmed) {
    if (is_comment_in_both(line)) return Evidence::none;
    if (trimmed.starts_with("*") || starts_with_level(trimmed)) return Evidence::free;
    std::string_view area = without_leading_blanks(line.substr(0, SEQUENCE_WIDTH));
    while (area.ends_with(' ')) area.remove_suffix(1);
    const bool at_margin = line.front() != ' ';
    if (is_number(area)) return Evidence::fixed;
    if (line.size() <= SEQUENCE_WIDTH || !at_margin || area.find(' ') != std::string_view::npos) {
        return Evidence::free;
    }
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
    if (is_numbered_card(line)) return Evidence::fixed;
    if (line.size() > LONGEST_CARD && !trimmed.starts_with("*")) return Evidence::beyond_card;
    return Evidence::none;
}

// After such a line the format is known.
bool switches_format(std::string_view line) {
    const std::string_view text = without_leading_blanks(line);
    return (text.starts_with(">>") || text.starts_with("$")) && format_directive(text).has_value();
}

}  // namespace

FormatFinding detect_source_format(const SourceFile& file) {
    int fixed = 0;
    int free = 0;
    int beyond = 0;
    for (const std::string_view line : file.lines) {
        if (switches_format(line)) break;
        const Evidence evidence = judge(line);
        fixed += evidence == Evidence::fixed ? 1 : 0;
        free += evidence == Evidence::free ? 1 : 0;
        beyond += evidence == Evidence::beyond_card ? 1 : 0;
    }
    const bool is_disputed = fixed > 0 && free > 0;
    if (free > fixed) return {SourceFormat::free, is_disputed};
    if (beyond > 0) return {SourceFormat::variable, is_disputed};
    if (fixed > 0) return {SourceFormat::fixed, is_disputed};
    return {};
}

}  // namespace records
