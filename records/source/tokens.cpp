#include "records/source/tokens.h"

#include <algorithm>

#include "records/source/text/text_case.h"

namespace records {

namespace {

constexpr std::size_t MAX_NAME = 255;
constexpr std::size_t MAX_QUOTED = 40;

bool joins(const Token& before, const TextWord& word) {
    return !word.space_before && before.kind == WordKind::word && word.kind == WordKind::word;
}

}  // namespace

std::vector<Token> make_tokens(const std::vector<TextWord>& words, TextArena& arena) {
    std::vector<Token> tokens;
    tokens.reserve(words.size());
    for (const TextWord& word : words) {
        const bool is_plain = word.kind == WordKind::literal || word.kind == WordKind::broken;
        std::string text = is_plain ? std::string(word.text) : to_upper(word.text);
        if (!tokens.empty() && joins(tokens.back(), word)) {
            tokens.back().text += text;
            tokens.back().raw = arena.keep(std::string(tokens.back().raw) + std::string(word.text));
            continue;
        }
        const bool new_line = tokens.empty() || tokens.back().position.line != word.position.line ||
                              tokens.back().position.inclusion != word.position.inclusion;
        tokens.push_back(
            {word.kind, word.space_before, new_line, std::move(text), word.position, word.text});
    }
    return tokens;
}

TokenCursor::TokenCursor(const std::vector<Token>& tokens, std::size_t begin, std::size_t end)
    : tokens_(tokens), at_(begin), end_(end) {
    end_token_.kind = WordKind::directive_end;
    if (end_ > begin) end_token_.position = tokens_[end_ - 1].position;
}

std::string quoted(const Token& token) {
    if (token.kind == WordKind::directive_end) return "the end of the line";
    if (token.kind == WordKind::period) return "a period";
    if (token.text.size() > MAX_QUOTED) return "'" + token.text.substr(0, MAX_QUOTED) + "...'";
    return "'" + token.text + "'";
}

bool is_integer(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), is_digit);
}

bool is_data_name(std::string_view text) {
    if (text.empty() || text.size() > MAX_NAME || text.front() == '-' || text.back() == '-') {
        return false;
    }
    bool has_letter = false;
    for (const char c : text) {
        const bool letter = is_letter(c) || static_cast<unsigned char>(c) >= 0x80;
        has_letter = has_letter || letter;
        if (!letter && !is_digit(c) && c != '-' && c != '_') return false;
    }
    return has_letter;
}

}  // namespace records
