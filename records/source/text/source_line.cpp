#include "records/source/text/source_line.h"

#include "records/source/text/source_set.h"
#include "records/source/text/text_case.h"

namespace records {

namespace {

constexpr std::size_t INDICATOR = 6;  // offset of column 7

SourceLine make_line(LineKind kind, std::string_view line, std::size_t offset) {
    while (offset < line.size() && line[offset] == ' ') ++offset;
    if (offset >= line.size()) return {kind == LineKind::source ? LineKind::blank : kind, {}, 1};
    std::string_view content = line.substr(offset);
    while (!content.empty() && content.back() == ' ') content.remove_suffix(1);
    return {kind, content, offset + 1};
}

bool is_compiler_directive(std::string_view content) {
    if (content.starts_with(">>")) return true;
    constexpr std::string_view words[] = {"SET", "IF",      "ELSE",  "ELSE-IF",
                                          "END", "DISPLAY", "REGION"};
    if (!content.starts_with("$")) return false;
    const std::string_view rest = content.substr(1);
    for (const std::string_view word : words) {
        if (starts_with_word(rest, word) &&
            (rest.size() == word.size() || rest[word.size()] == ' '))
            return true;
    }
    return false;
}

// Lines that only steer the printed listing.
bool is_listing_line(std::string_view content) {
    if (content.ends_with('.')) content.remove_suffix(1);
    for (const std::string_view word : {"EJECT", "SKIP1", "SKIP2", "SKIP3"}) {
        if (same_word(content, word)) return true;
    }
    if (!starts_with_word(content, "TITLE")) return false;
    const std::string_view rest = without_leading_blanks(content.substr(5));
    return !rest.empty() && is_quote(rest.front());
}

SourceLine classify(std::string_view line, std::size_t offset) {
    const SourceLine result = make_line(LineKind::source, line, offset);
    if (result.kind == LineKind::blank) return result;
    if (result.content.starts_with("*>")) {
        return make_line(LineKind::comment, line, result.column - 1 + 2);
    }
    if (is_compiler_directive(result.content)) {
        return {LineKind::directive, result.content, result.column};
    }
    if (is_listing_line(result.content)) return {};
    return result;
}

SourceLine read_free(std::string_view line, bool debugging_lines) {
    if (line.starts_with('*') && !line.starts_with("*>")) {
        return make_line(LineKind::comment, line, 1);
    }
    SourceLine result = classify(line, 0);
    if (result.kind != LineKind::directive || !starts_with_word(result.content, ">>D ")) {
        return result;
    }
    if (!debugging_lines) return {};
    return classify(line, result.column - 1 + 3);
}

SourceLine read_columns(std::string_view line, bool debugging_lines) {
    if (line.size() <= INDICATOR) {
        // Directives that choose the format may stand anywhere.
        const SourceLine start = classify(line, 0);
        return start.kind == LineKind::directive ? start : SourceLine{};
    }
    const SourceLine start = make_line(LineKind::source, line, 0);
    if (start.column <= INDICATOR && is_compiler_directive(start.content)) {
        return {LineKind::directive, start.content, start.column};
    }
    switch (line[INDICATOR]) {
        case '*':
        case '/': {
            const std::size_t skip = line.substr(INDICATOR).starts_with("*>") ? 2 : 1;
            return make_line(LineKind::comment, line, INDICATOR + skip);
        }
        case 'D':
        case 'd':
            if (!debugging_lines) return {};
            break;
        case '-':
            return make_line(LineKind::continuation, line, INDICATOR + 1);
        case '$':
        case '>':
            return classify(line, INDICATOR);
        default:
            break;
    }
    return classify(line, INDICATOR + 1);
}

}  // namespace

SourceLine read_source_line(std::string_view line, SourceFormat format, bool debugging_lines) {
    if (format == SourceFormat::free) return read_free(line, debugging_lines);
    if (format != SourceFormat::variable) line = line.substr(0, FIXED_MARGIN);
    return read_columns(line, debugging_lines);
}

std::optional<SourceFormat> format_directive(std::string_view content) {
    const std::string text = to_upper(content);
    std::size_t at = text.find("SOURCEFORMAT");
    std::size_t length = 12;
    if (at == std::string::npos) {
        at = text.find("FORMAT");
        length = 6;
        if (at == std::string::npos || text.find("SOURCE") > at) return std::nullopt;
    }
    const std::string_view rest = std::string_view(text).substr(at + length);
    if (rest.find("FREE") != std::string_view::npos) return SourceFormat::free;
    if (rest.find("VARIABLE") != std::string_view::npos) return SourceFormat::variable;
    if (rest.find("FIXED") != std::string_view::npos) return SourceFormat::fixed;
    return std::nullopt;
}

}  // namespace records
