#include "records/source/text/text_manipulation.h"

#include <algorithm>
#include <utility>

#include "records/source/text/text_case.h"
#include "records/source/text/word_scanner.h"

namespace records {

namespace {

constexpr std::size_t MAX_COPY_DEPTH = 64;
constexpr std::size_t MAX_WORDS = 1'000'000;  // of all files together, each inclusion counted

constexpr std::size_t MAX_BYTES = std::size_t{128} << 20;
constexpr const char* TOO_LARGE =
    "the text is too large: more than 1,000,000 words or 128 MiB with all copies";

bool is_word(const std::vector<TextWord>& words, std::size_t at, std::string_view text) {
    return at < words.size() && words[at].kind == WordKind::word && same_word(words[at].text, text);
}

bool is_kind(const std::vector<TextWord>& words, std::size_t at, WordKind kind) {
    return at < words.size() && words[at].kind == kind;
}

// Name of a copybook or library: a word, or a literal without its quotes.
std::string copy_name(const TextWord& word) {
    std::string_view text = word.text;
    if (word.kind == WordKind::literal && text.size() >= 2 && is_quote(text.front())) {
        text = text.substr(1, text.size() - 2);
    }
    return std::string(text);
}

bool is_name(const std::vector<TextWord>& words, std::size_t at) {
    return is_kind(words, at, WordKind::word) || is_kind(words, at, WordKind::literal);
}

// Passes over procedures, to the program that follows them in the same file. The words at its head
// that were read to find it go to `words`; false when there is none.
bool skip_procedures(WordScanner& scanner, std::vector<TextWord>& words) {
    std::optional<TextWord> before;
    while (auto word = scanner.next()) {
        const bool is_division =
            same_word(word->text, "DIVISION") && before &&
            (same_word(before->text, "IDENTIFICATION") || same_word(before->text, "ID"));
        if (is_division) words.push_back(*before);
        if (is_division || same_word(word->text, "PROGRAM-ID")) {
            words.push_back(*word);
            return true;
        }
        before = word;
    }
    return false;
}

// A REPLACE statement, not a name that happens to be REPLACE.
bool is_replace_statement(const std::vector<TextWord>& words, std::size_t at) {
    if (!is_word(words, at, "REPLACE")) return false;
    if (is_kind(words, at + 1, WordKind::pseudo)) return true;
    for (const std::string_view word : {"OFF", "LAST", "ALSO", "LEADING", "TRAILING"}) {
        if (is_word(words, at + 1, word)) return true;
    }
    return false;
}

std::string searched_folders(const std::string& first, const std::vector<std::string>& folders) {
    std::string text = "'" + (first.empty() ? std::string(".") : first) + "'";
    for (const std::string& folder : folders) text += ", '" + folder + "'";
    return text;
}

}  // namespace

TextManipulator::TextManipulator(const CopybookOptions& options, SourceSet& sources,
                                 TextArena& arena, Diagnostics& diagnostics)
    : options_(options),
      sources_(sources),
      arena_(arena),
      diagnostics_(diagnostics),
      library_(options.copy_path, options.tab_width),
      words_left_(MAX_WORDS),
      bytes_left_(MAX_BYTES) {}

void TextManipulator::break_at(const TextWord& word, std::string message, Words& out) {
    out.push_back({WordKind::broken, true, arena_.keep(std::move(message)), word.position});
}

TextManipulator::Words TextManipulator::expand(std::shared_ptr<const SourceFile> file) {
    return obey_replace(expand_file(std::move(file), {}, SourceFormat::fixed));
}

// All words of one inclusion; `format` is left as it stood at its end.
TextManipulator::Words TextManipulator::scan(std::uint32_t inclusion, SourceFormat& format) {
    WordScanner scanner(sources_, inclusion, format, options_.debugging_lines, arena_,
                        diagnostics_);
    Words words;
    while (auto word = scanner.next()) {
        if (words_left_ == 0) {
            stopped_ = true;
            break_at(*word, TOO_LARGE, words);
            break;
        }
        --words_left_;
        if (same_word(word->text, "DIVISION") && !words.empty() &&
            is_word(words, words.size() - 1, "PROCEDURE")) {
            words.pop_back();
            if (skip_procedures(scanner, words)) continue;
            stopped_ = true;
            break;
        }
        words.push_back(*word);
    }
    format = scanner.format();
    return words;
}

TextManipulator::Words TextManipulator::expand_file(std::shared_ptr<const SourceFile> file,
                                                    Position from, SourceFormat inherited) {
    FormatFinding finding;
    SourceFormat format = options_.format;
    const bool is_detected = format == SourceFormat::detect;
    if (is_detected) {
        finding = detect_source_format(*file);
        format = finding.format.value_or(inherited);
    }
    const SourceFormat first_format = format;
    open_files_.push_back(*file->name);
    const bool was_stopped = stopped_;
    const Words words = scan(sources_.include(file, from), format);
    const bool is_switched = format != first_format;
    read_files_.push_back({std::move(file), format, is_detected && !is_switched,
                           finding.is_disputed && !is_switched});
    const bool stops_here = stopped_ && !was_stopped;
    stopped_ = was_stopped;
    Words out;
    out.reserve(words.size());
    bool in_directive = false;
    for (std::size_t at = 0; at < words.size() && !stopped_;) {
        const TextWord& word = words[at];
        if (word.kind == WordKind::directive_begin) in_directive = true;
        if (word.kind == WordKind::directive_end) in_directive = false;
        if (!in_directive && is_word(words, at, "COPY")) {
            at = expand_copy(words, at, format, out);
        } else if (!in_directive && is_word(words, at, "EXEC") &&
                   is_kind(words, at + 1, WordKind::word)) {
            at = expand_exec(words, at, format, out);
        } else {
            out.push_back(word);
            ++at;
        }
    }
    stopped_ = stopped_ || stops_here;
    open_files_.pop_back();
    return out;
}

// COPY name [IN|OF library] [SUPPRESS] [REPLACING ...] .
std::size_t TextManipulator::expand_copy(const Words& words, std::size_t at, SourceFormat format,
                                         Words& out) {
    const TextWord& statement = words[at++];
    if (!is_name(words, at)) {
        break_at(statement, "expected the name of a copybook after COPY", out);
        return at;
    }
    const std::string name = copy_name(words[at++]);
    std::string library;
    if ((is_word(words, at, "IN") || is_word(words, at, "OF")) && is_name(words, at + 1)) {
        library = copy_name(words[at + 1]);
        at += 2;
    }
    while (is_word(words, at, "SUPPRESS") || is_word(words, at, "PRINTING")) ++at;
    std::vector<ReplaceRule> rules;
    if (is_word(words, at, "REPLACING")) {
        RulesResult result = parse_replace_rules(words, at + 1);
        if (result.error_at) {
            break_at({WordKind::broken, true, {}, *result.error_at}, std::move(result.error), out);
        }
        rules = std::move(result.rules);
        at = result.next;
        while (at < words.size() && words[at].kind != WordKind::period) ++at;
    }
    include(name, library, statement, format, std::move(rules), out);
    if (is_kind(words, at, WordKind::period)) return at + 1;
    break_at(at < words.size() ? words[at] : statement,
             "expected a period at the end of COPY " + name, out);
    return at;
}

// EXEC ... END-EXEC is not ours; only EXEC SQL INCLUDE name is a copy, when there is such a file.
std::size_t TextManipulator::expand_exec(const Words& words, std::size_t at, SourceFormat format,
                                         Words& out) {
    const TextWord& statement = words[at];
    std::size_t end = at;
    while (end < words.size() && !is_word(words, end, "END-EXEC")) ++end;
    if (end == words.size()) {
        break_at(statement, "EXEC is not closed: expected END-EXEC", out);
        return end;
    }
    if (is_word(words, at + 1, "SQL") && is_word(words, at + 2, "INCLUDE") &&
        is_name(words, at + 3) && at + 4 == end) {
        const std::string name = copy_name(words[at + 3]);
        if (library_.find(name, "", folder_of(open_files_.back()))) {
            include(name, "", statement, format, {}, out);
        }
    }
    ++end;
    return is_kind(words, end, WordKind::period) ? end + 1 : end;
}

void TextManipulator::include(const std::string& name, const std::string& library,
                              const TextWord& statement, SourceFormat format,
                              std::vector<ReplaceRule> rules, Words& out) {
    const std::string folder = folder_of(open_files_.back());
    const auto path = library_.find(name, library, folder);
    if (!path) {
        break_at(statement,
                 "copybook '" + name + "' was not found; looked in " +
                     searched_folders(folder, library_.folders()) + library_.unread_folders(),
                 out);
        return;
    }
    if (std::find(open_files_.begin(), open_files_.end(), *path) != open_files_.end()) {
        break_at(statement, "copybook '" + name + "' copies itself", out);
        return;
    }
    if (open_files_.size() > MAX_COPY_DEPTH) {
        break_at(statement, "COPY is nested more than 64 deep", out);
        return;
    }
    std::string why;
    auto file = library_.read(*path, why);
    if (!file) {
        break_at(statement, "cannot read copybook '" + *path + "': " + why, out);
        return;
    }
    if (file->text.size() > bytes_left_) {
        stopped_ = true;
        break_at(statement, TOO_LARGE, out);
        return;
    }
    bytes_left_ -= file->text.size();
    Words copied = expand_file(std::move(file), statement.position, format);
    if (!copied.empty()) copied.front().space_before = true;
    if (!rules.empty()) {
        Replacer replacer(std::move(rules), arena_);
        copied = replacer.replace_all(std::move(copied));
        if (replacer.exhausted()) {
            break_at(statement, "REPLACING has too much to compare and was stopped", copied);
        }
    }
    if (copied.size() > words_left_) {
        stopped_ = true;
        break_at(statement, TOO_LARGE, out);
        return;
    }
    words_left_ -= copied.size();
    out.insert(out.end(), copied.begin(), copied.end());
}

void TextManipulator::report_exhausted(const Replacer* replacer, const TextWord& word, Words& out) {
    if (!replacer || !replacer->exhausted()) return;
    break_at(word, "REPLACE has too much to compare and was stopped", out);
}

// Reads the REPLACE statement at `at`; gives the index after it.
std::size_t TextManipulator::read_replace(const Words& words, std::size_t at, Words& out,
                                          std::unique_ptr<Replacer>& replacer) {
    const bool is_off = is_word(words, at + 1, "OFF") || is_word(words, at + 1, "LAST");
    RulesResult result;
    result.next = at + 1;
    if (!is_off) {
        result = parse_replace_rules(words, is_word(words, at + 1, "ALSO") ? at + 2 : at + 1);
    }
    if (result.error_at) {
        break_at({WordKind::broken, true, {}, *result.error_at}, std::move(result.error), out);
    }
    report_exhausted(replacer.get(), words[at], out);
    replacer.reset();
    if (!result.rules.empty()) {
        replacer = std::make_unique<Replacer>(std::move(result.rules), arena_);
    }
    std::size_t end = result.next;
    while (end < words.size() && words[end].kind != WordKind::period) ++end;
    return end + 1;
}

// REPLACE rules hold from their statement to the next one, or to REPLACE OFF.
TextManipulator::Words TextManipulator::obey_replace(Words words) {
    bool has_statement = false;
    for (std::size_t at = 0; at < words.size() && !has_statement; ++at) {
        has_statement = is_replace_statement(words, at);
    }
    if (!has_statement) return words;
    Words out;
    std::unique_ptr<Replacer> replacer;
    for (std::size_t at = 0; at < words.size() && out.size() <= MAX_WORDS;) {
        if (is_replace_statement(words, at)) {
            at = read_replace(words, at, out, replacer);
            continue;
        }
        const std::size_t used = replacer ? replacer->replace_at(words, at, out) : 0;
        if (used == 0) out.push_back(words[at]);
        at += std::max<std::size_t>(used, 1);
    }
    if (out.size() > MAX_WORDS) break_at(out.back(), TOO_LARGE, out);
    if (!out.empty()) report_exhausted(replacer.get(), out.back(), out);
    return out;
}

}  // namespace records
