// Tokens: what the parser reads. Text words that touch each other are one token.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "records/source/text/text_word.h"

namespace records {

struct Token {
    WordKind kind = WordKind::period;
    bool space_before = true;
    bool first_on_line = false;
    std::string text;  // words in upper case, literals as written
    Position position;
    std::string_view raw;  // as written, in the source or the arena
};

// Joins words that replacement has made adjacent, and converts them to upper case.
std::vector<Token> make_tokens(const std::vector<TextWord>& words, TextArena& arena);

// Walks a range of tokens. Past the end it stands on an end token at the last place.
class TokenCursor {
  public:
    TokenCursor(const std::vector<Token>& tokens, std::size_t begin, std::size_t end);

    bool at_end() const { return at_ >= end_; }
    std::size_t index() const { return at_; }
    std::size_t end() const { return end_; }
    void move_to(std::size_t index) { at_ = index; }
    void advance() { at_ += at_ < end_ ? 1 : 0; }
    const Token& peek(std::size_t ahead = 0) const {
        return at_ + ahead < end_ ? tokens_[at_ + ahead] : end_token_;
    }
    bool at(WordKind kind, std::size_t ahead = 0) const {
        return at_ + ahead < end_ && tokens_[at_ + ahead].kind == kind;
    }
    bool at_word(std::string_view word, std::size_t ahead = 0) const {
        return at(WordKind::word, ahead) && tokens_[at_ + ahead].text == word;
    }
    // Takes the word if it is there.
    bool take_word(std::string_view word) {
        if (!at_word(word)) return false;
        ++at_;
        return true;
    }
    bool take(WordKind kind) {
        if (!at(kind)) return false;
        ++at_;
        return true;
    }

  private:
    const std::vector<Token>& tokens_;
    std::size_t at_;
    std::size_t end_;
    Token end_token_;
};

// The token as a message quotes it: "'TEXT'", "the end of the text".
std::string quoted(const Token& token);

// True when the text is a number of digits only.
bool is_integer(std::string_view text);

// True when the text can be a data name: letters, digits, hyphens, at least one letter.
bool is_data_name(std::string_view text);

}  // namespace records
