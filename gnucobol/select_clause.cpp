#include "gnucobol/select_clause.h"

#include <algorithm>
#include <array>
#include <optional>

namespace gnucobol {

namespace {

constexpr std::string_view BLANKS = " \t\r\n";

std::string to_upper(std::string_view text) {
    std::string upper(text);
    for (char& c : upper) {
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    }
    return upper;
}

// A line without its sequence number and its comment; empty for a comment line.
std::string_view program_text(std::string_view line) {
    constexpr std::size_t sequence_area = 6;
    if (line.size() > sequence_area && line.find_first_not_of(" 0123456789") >= sequence_area) {
        line.remove_prefix(sequence_area);
        if (line.front() == '*' || line.front() == '/') return {};
    }
    const std::size_t first = line.find_first_not_of(BLANKS);
    if (first == std::string_view::npos || line[first] == '*') return {};
    return line.substr(0, line.find("*>"));
}

void add_words(std::string_view line, std::vector<std::string>& words) {
    for (std::size_t at = line.find_first_not_of(BLANKS); at < line.size();
         at = line.find_first_not_of(BLANKS, at)) {
        const char quote = line[at];
        std::size_t end = 0;
        if (quote == '"' || quote == '\'') {
            end = std::min(line.find(quote, at + 1), line.size() - 1) + 1;
        } else {
            end = std::min(line.find_first_of(BLANKS, at), line.size());
        }
        words.emplace_back(line.substr(at, end - at));
        at = end;
    }
}

std::vector<std::string> words_of(std::string_view program) {
    std::vector<std::string> words;
    while (!program.empty()) {
        const std::size_t end = std::min(program.find('\n'), program.size());
        add_words(program_text(program.substr(0, end)), words);
        program.remove_prefix(std::min(end + 1, program.size()));
    }
    return words;
}

bool stands_before_target(const std::string& word) {
    constexpr std::array<std::string_view, 10> known = {
        "TO", "EXTERNAL", "DYNAMIC", "DISK", "FILE", "USING", "VARYING", "UNIT", "TAPE", "RANDOM"};
    return std::find(known.begin(), known.end(), to_upper(word)) != known.end();
}

std::string unquoted(std::string word) {
    if (word.size() > 1 && (word.front() == '"' || word.front() == '\'')) {
        word.erase(0, 1);
        word.resize(word.find_last_not_of("\"'") + 1);
        return word;
    }
    if (word.ends_with('.')) word.pop_back();
    return word;
}

// What the SELECT that begins at `at` says, if it is one.
std::optional<SelectClause> clause_at(const std::vector<std::string>& words, std::size_t at) {
    if (to_upper(words[at]) != "SELECT" || at + 2 >= words.size()) return std::nullopt;
    ++at;
    if (to_upper(words[at]) == "OPTIONAL") ++at;
    SelectClause clause{to_upper(words[at]), {}};
    constexpr std::size_t far = 40;  // words between a SELECT and its ASSIGN
    const std::size_t end = std::min(words.size(), at + far);
    while (at < end && to_upper(words[at]) != "ASSIGN") ++at;
    if (at == end) return clause;
    for (++at; at < end && stands_before_target(words[at]);) ++at;
    if (at < end) clause.target = unquoted(words[at]);
    return clause;
}

}  // namespace

std::vector<SelectClause> select_clauses(std::string_view program) {
    const std::vector<std::string> words = words_of(program);
    std::vector<SelectClause> clauses;
    for (std::size_t at = 0; at < words.size(); ++at) {
        if (to_upper(words[at]) == "PROCEDURE") break;
        if (auto clause = clause_at(words, at)) clauses.push_back(std::move(*clause));
    }
    return clauses;
}

}  // namespace gnucobol
