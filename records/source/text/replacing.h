// Replacement of text words, as COPY REPLACING and REPLACE ask for it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "records/source/text/text_word.h"

namespace records {

struct ReplaceRule {
    enum class Part { whole, leading, trailing } part = Part::whole;
    std::vector<TextWord> pattern;  // not empty; one word when only a part of it is replaced
    std::vector<TextWord> replacement;
};

// Applies a set of rules. What was put in is not looked at again, so replacement always ends; the
// comparisons it makes and the words it gives are limited, so that it ends soon.
class Replacer {
  public:
    Replacer(std::vector<ReplaceRule> rules, TextArena& arena);

    bool empty() const { return rules_.empty(); }
    // Tries the rules at words[at]. When one fits, appends its replacement to `out` and gives how
    // many words it stands for; otherwise gives 0.
    std::size_t replace_at(std::vector<TextWord>& words, std::size_t at,
                           std::vector<TextWord>& out);
    std::vector<TextWord> replace_all(std::vector<TextWord> words);
    // True once a limit has stopped replacement.
    bool exhausted() const { return comparisons_left_ == 0; }

  private:
    bool matches(const ReplaceRule& rule, const std::vector<TextWord>& words, std::size_t at);
    const ReplaceRule* find_rule(const std::vector<TextWord>& words, std::size_t at);
    void put_whole(const ReplaceRule& rule, std::vector<TextWord>& words, std::size_t at,
                   std::vector<TextWord>& out);
    void put_part(const ReplaceRule& rule, const TextWord& word, std::vector<TextWord>& out);

    std::vector<ReplaceRule> rules_;
    TextArena& arena_;
    std::unordered_map<std::string, std::vector<std::size_t>> by_first_word_;
    std::vector<std::size_t> partial_;
    std::uint64_t comparisons_left_;
};

// What parsing a REPLACING phrase or a REPLACE statement gave.
struct RulesResult {
    std::vector<ReplaceRule> rules;
    std::size_t next = 0;  // index of the first word not used
    std::optional<Position> error_at;
    std::string error;
};

// Reads "operand BY operand ..." from words[at] up to the period, which is not taken.
RulesResult parse_replace_rules(const std::vector<TextWord>& words, std::size_t at);

}  // namespace records
