#include "records/source/text/word_scanner.h"

#include <string>
#include <string_view>

#include "records/source/text/text_case.h"

namespace records {

namespace {

constexpr std::string_view DIRECTIVE_SIGN = "sxml:";

bool is_directive_comment(std::string_view comment) {
    return starts_with_word(comment, DIRECTIVE_SIGN);
}

bool is_literal_prefix(std::string_view word) {
    for (const std::string_view prefix : {"X", "N", "NX", "Z", "H", "B", "BX", "G", "U", "L"}) {
        if (same_word(word, prefix)) return true;
    }
    return false;
}

bool is_conditional_compilation(std::string_view content) {
    content.remove_prefix(content.starts_with(">>") ? 2 : 1);
    content = without_leading_blanks(content);
    return starts_with_word(content, "IF") || starts_with_word(content, "EVALUATE");
}

}  // namespace

WordScanner::WordScanner(const SourceSet& sources, std::uint32_t inclusion, SourceFormat format,
                         bool debugging_lines, TextArena& arena, Diagnostics& diagnostics)
    : sources_(sources),
      file_(sources.file(inclusion)),
      arena_(arena),
      diagnostics_(diagnostics),
      inclusion_(inclusion),
      format_(format),
      debugging_lines_(debugging_lines) {}

Position WordScanner::position_at(std::size_t offset) const {
    return {inclusion_, static_cast<std::uint32_t>(next_index_),
            static_cast<std::uint32_t>(line_.column + offset)};
}

TextWord WordScanner::take(WordKind kind, std::size_t length) {
    const TextWord word{kind, space_before_, line_.content.substr(at_, length), position_at(at_)};
    at_ += length;
    space_before_ = false;
    return word;
}

void WordScanner::obey_compiler_directive(const SourceLine& line) {
    if (const auto format = format_directive(line.content)) {
        format_ = *format;
    } else if (is_conditional_compilation(line.content)) {
        const Position position{inclusion_, static_cast<std::uint32_t>(next_index_),
                                static_cast<std::uint32_t>(line.column)};
        diagnostics_.warning(sources_.place(position),
                             "conditional compilation is ignored: all branches are read");
    }
}

// False when there is nothing to scan in the line.
bool WordScanner::enter_line(const SourceLine& line) {
    switch (line.kind) {
        case LineKind::blank:
            return false;
        case LineKind::directive:
            obey_compiler_directive(line);
            return false;
        case LineKind::comment:
            if (!is_directive_comment(line.content)) return false;
            directive_pending_ = true;
            break;
        case LineKind::source:
        case LineKind::continuation:
            break;
    }
    line_ = line;
    at_ = 0;
    space_before_ = true;
    return true;
}

bool WordScanner::next_line() {
    while (next_index_ < file_.lines.size()) {
        const std::string_view text = file_.lines[next_index_++];
        if (enter_line(read_source_line(text, format_, debugging_lines_))) return true;
    }
    line_ = {};
    at_ = 0;
    return false;
}

std::optional<std::size_t> WordScanner::continuation() const {
    if (format_ == SourceFormat::free || in_directive_) return std::nullopt;
    for (std::size_t i = next_index_; i < file_.lines.size(); ++i) {
        const SourceLine line = read_source_line(file_.lines[i], format_, debugging_lines_);
        if (line.kind == LineKind::continuation) return i;
        const bool skipped = line.kind == LineKind::blank || (line.kind == LineKind::comment &&
                                                              !is_directive_comment(line.content));
        if (!skipped) return std::nullopt;
    }
    return std::nullopt;
}

void WordScanner::continue_at(std::size_t index) {
    next_index_ = index + 1;
    line_ = read_source_line(file_.lines[index], format_, debugging_lines_);
    at_ = 0;
}

std::optional<TextWord> WordScanner::begin_directive() {
    directive_pending_ = false;
    in_directive_ = true;
    return take(WordKind::directive_begin, DIRECTIVE_SIGN.size());
}

// At "*>": skips the rest of the line. A directive after other text is a mistake worth telling.
std::optional<TextWord> WordScanner::scan_comment() {
    const std::string_view comment = without_leading_blanks(line_.content.substr(at_ + 2));
    TextWord word = take(WordKind::broken, line_.content.size() - at_);
    if (!is_directive_comment(comment)) return std::nullopt;
    word.text = "a directive must be on a separate line, before the item that it is for";
    return word;
}

std::optional<TextWord> WordScanner::next() {
    for (;;) {
        if (directive_pending_) return begin_directive();
        while (at_ < line_.content.size() && at_separator(at_)) {
            ++at_;
            space_before_ = true;
        }
        if (at_ >= line_.content.size()) {
            if (in_directive_) {
                in_directive_ = false;
                return take(WordKind::directive_end, 0);
            }
            if (!next_line()) return std::nullopt;
            continue;
        }
        if (line_.content.substr(at_).starts_with("*>") && space_before_ && !in_directive_) {
            if (const auto word = scan_comment()) return word;
            continue;
        }
        return scan_one();
    }
}

// The end of the line, a blank, or the end of pseudo-text: what makes a comma or a period before it
// a separator.
bool WordScanner::at_gap(std::size_t at) const {
    const std::string_view text = line_.content;
    return at >= text.size() || text[at] == ' ' || text.substr(at).starts_with("==");
}

// A blank, or a comma or semicolon that separates.
bool WordScanner::at_separator(std::size_t at) const {
    const std::string_view text = line_.content;
    if (text[at] == ' ') return true;
    if (text[at] != ',' && text[at] != ';') return false;
    if (at_gap(at + 1) || is_quote(text[at + 1])) return true;
    return at > 0 && is_quote(text[at - 1]);
}

TextWord WordScanner::scan_one() {
    const char c = line_.content[at_];
    switch (c) {
        case '(':
            return take(WordKind::open, 1);
        case ')':
            return take(WordKind::close, 1);
        case ':':
            return take(WordKind::colon, 1);
        case '"':
        case '\'':
            return scan_literal(at_);
        case '=':
            if (!in_directive_ && line_.content.substr(at_).starts_with("==")) {
                return take(WordKind::pseudo, 2);
            }
            return take(WordKind::symbol, 1);
        case '<':
        case '>':
        case '&':
            return take(WordKind::symbol, 1);
        default:
            return scan_word();
    }
}

TextWord WordScanner::scan_word() {
    const auto ends_before = [this](std::size_t at) {
        const std::string_view text = line_.content;
        if (at >= text.size() || at_separator(at)) return true;
        if (text[at] == '.') {
            return at_gap(at + 1) || (at > 0 && is_quote(text[at - 1]));
        }
        return std::string_view("\"'():=<>&").find(text[at]) != std::string_view::npos;
    };
    if (ends_before(at_)) return take(WordKind::period, 1);
    std::size_t end = at_;
    while (!ends_before(end)) ++end;
    if (end < line_.content.size() && is_quote(line_.content[end]) &&
        is_literal_prefix(line_.content.substr(at_, end - at_))) {
        return scan_literal(end);
    }
    TextWord word = take(WordKind::word, end - at_);
    std::string joined;
    while (at_ >= line_.content.size()) {
        const auto index = continuation();
        if (!index) break;
        continue_at(*index);
        if (joined.empty()) joined = word.text;
        while (!ends_before(at_)) joined += line_.content[at_++];
    }
    if (!joined.empty()) word.text = arena_.keep(std::move(joined));
    return word;
}

// Reads from `at_`, after the opening quote, to the closing quote or the end of the line. True
// when the literal was closed.
bool WordScanner::scan_literal_part(std::string& text, char quote) {
    while (at_ < line_.content.size()) {
        const char c = line_.content[at_++];
        text += c;
        if (c != quote) continue;
        if (at_ >= line_.content.size() || line_.content[at_] != quote) return true;
        text += line_.content[at_++];
    }
    return false;
}

// The line has ended inside a literal: goes to the line that continues it.
bool WordScanner::continue_literal(std::string& text, char quote) {
    const auto index = continuation();
    if (!index) return false;
    if (format_ == SourceFormat::fixed) {
        const std::size_t end = line_.column - 1 + line_.content.size();
        if (end < FIXED_MARGIN) text.append(FIXED_MARGIN - end, ' ');
    }
    continue_at(*index);
    if (!line_.content.starts_with(quote)) return false;
    at_ = 1;
    return true;
}

// `start` is the opening quote; a prefix stands between at_ and it.
TextWord WordScanner::scan_literal(std::size_t start) {
    TextWord word{WordKind::literal, space_before_, {}, position_at(at_)};
    const char quote = line_.content[start];
    std::string text(line_.content.substr(at_, start + 1 - at_));
    at_ = start + 1;
    space_before_ = false;
    while (!scan_literal_part(text, quote)) {
        if (continue_literal(text, quote)) continue;
        word.kind = WordKind::broken;
        word.text = "the literal is not closed: expected a quotation mark";
        return word;
    }
    word.text = arena_.keep(std::move(text));
    return word;
}

}  // namespace records
