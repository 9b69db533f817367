#include "records/source/text/replacing.h"

#include <algorithm>
#include <utility>

#include "records/source/text/text_case.h"

namespace records {

namespace {

constexpr std::uint64_t MAX_COMPARISONS = 20'000'000;
constexpr std::size_t MAX_OUTPUT = 1'000'000;  // words

bool same_text(const TextWord& first, const TextWord& second) {
    if (first.kind != second.kind) return false;
    if (first.kind == WordKind::literal) return first.text == second.text;
    return same_word(first.text, second.text);
}

bool replaceable(const TextWord& word) {
    return word.kind != WordKind::directive_begin && word.kind != WordKind::directive_end &&
           word.kind != WordKind::broken;
}

bool part_matches(const ReplaceRule& rule, const TextWord& word) {
    const std::string_view part = rule.pattern.front().text;
    if (word.kind != WordKind::word || word.text.size() < part.size()) return false;
    const std::size_t start =
        rule.part == ReplaceRule::Part::leading ? 0 : word.text.size() - part.size();
    return same_word(word.text.substr(start, part.size()), part);
}

}  // namespace

Replacer::Replacer(std::vector<ReplaceRule> rules, TextArena& arena)
    : rules_(std::move(rules)), arena_(arena), comparisons_left_(MAX_COMPARISONS) {
    for (std::size_t i = 0; i < rules_.size(); ++i) {
        if (rules_[i].part == ReplaceRule::Part::whole) {
            by_first_word_[to_upper(rules_[i].pattern.front().text)].push_back(i);
        } else {
            partial_.push_back(i);
        }
    }
}

bool Replacer::matches(const ReplaceRule& rule, const std::vector<TextWord>& words,
                       std::size_t at) {
    const std::size_t length = rule.pattern.size();
    if (rule.part != ReplaceRule::Part::whole) {
        if (comparisons_left_ > 0) --comparisons_left_;
        return part_matches(rule, words[at]);
    }
    if (words.size() - at < length) return false;
    for (std::size_t i = 0; i < length; ++i) {
        if (comparisons_left_ == 0) return false;
        --comparisons_left_;
        if (!replaceable(words[at + i]) || !same_text(rule.pattern[i], words[at + i])) return false;
    }
    return true;
}

// The first rule, in the order written, that fits.
const ReplaceRule* Replacer::find_rule(const std::vector<TextWord>& words, std::size_t at) {
    std::size_t best = rules_.size();
    const auto try_rules = [&](const std::vector<std::size_t>& candidates) {
        for (const std::size_t i : candidates) {
            if (i >= best || comparisons_left_ == 0) return;
            if (matches(rules_[i], words, at)) best = i;
        }
    };
    const auto found = by_first_word_.find(to_upper(words[at].text));
    if (found != by_first_word_.end()) try_rules(found->second);
    try_rules(partial_);
    return best < rules_.size() ? &rules_[best] : nullptr;
}

// The replacement takes the place of the text it replaces, in messages and in spacing.
void Replacer::put_whole(const ReplaceRule& rule, std::vector<TextWord>& words, std::size_t at,
                         std::vector<TextWord>& out) {
    const std::size_t after = at + rule.pattern.size();
    if (rule.replacement.empty() && after < words.size() && words[at].space_before) {
        words[after].space_before = true;
    }
    for (std::size_t i = 0; i < rule.replacement.size(); ++i) {
        TextWord word = rule.replacement[i];
        if (i == 0) word.space_before = words[at].space_before;
        word.position = words[at].position;
        out.push_back(word);
    }
}

void Replacer::put_part(const ReplaceRule& rule, const TextWord& word, std::vector<TextWord>& out) {
    const std::size_t length = rule.pattern.front().text.size();
    std::string text;
    if (!rule.replacement.empty()) text = rule.replacement.front().text;
    if (rule.part == ReplaceRule::Part::leading) {
        text += word.text.substr(length);
    } else {
        text.insert(0, word.text.substr(0, word.text.size() - length));
    }
    if (text.empty()) return;
    TextWord replaced = word;
    replaced.text = arena_.keep(std::move(text));
    out.push_back(replaced);
}

std::size_t Replacer::replace_at(std::vector<TextWord>& words, std::size_t at,
                                 std::vector<TextWord>& out) {
    if (rules_.empty() || !replaceable(words[at])) return 0;
    const ReplaceRule* rule = find_rule(words, at);
    if (!rule) return 0;
    if (rule->part != ReplaceRule::Part::whole) {
        put_part(*rule, words[at], out);
        return 1;
    }
    put_whole(*rule, words, at, out);
    return rule->pattern.size();
}

std::vector<TextWord> Replacer::replace_all(std::vector<TextWord> words) {
    std::vector<TextWord> out;
    out.reserve(words.size());
    for (std::size_t at = 0; at < words.size();) {
        const std::size_t used = replace_at(words, at, out);
        if (used == 0) out.push_back(words[at]);
        at += std::max<std::size_t>(used, 1);
        if (out.size() > MAX_OUTPUT) {
            comparisons_left_ = 0;
            break;
        }
    }
    return out;
}

namespace {

class RuleParser {
  public:
    RuleParser(const std::vector<TextWord>& words, std::size_t at) : words_(words), at_(at) {}

    RulesResult parse() {
        while (more() && parse_rule()) {
        }
        if (!result_.error_at && result_.rules.empty()) fail("expected text to replace");
        result_.next = at_;
        return std::move(result_);
    }

  private:
    bool more() const { return at_ < words_.size() && words_[at_].kind != WordKind::period; }
    bool at_word(std::string_view text) const {
        return more() && words_[at_].kind == WordKind::word && same_word(words_[at_].text, text);
    }

    bool fail(std::string message) {
        if (words_.empty()) return false;
        result_.error_at = words_[std::min(at_, words_.size() - 1)].position;
        result_.error = std::move(message);
        return false;
    }

    bool parse_rule() {
        ReplaceRule rule;
        if (at_word("LEADING") || at_word("TRAILING")) {
            rule.part =
                at_word("LEADING") ? ReplaceRule::Part::leading : ReplaceRule::Part::trailing;
            ++at_;
        }
        const std::size_t start = at_;
        if (!parse_operand(rule.pattern)) return false;
        if (rule.pattern.empty()) {
            at_ = start;
            return fail("the text to replace is empty");
        }
        if (!at_word("BY")) return fail("expected BY and the new text");
        ++at_;
        const std::size_t new_start = at_;
        if (!parse_operand(rule.replacement)) return false;
        const bool is_part = rule.part != ReplaceRule::Part::whole;
        if (is_part && (rule.pattern.size() != 1 || rule.replacement.size() > 1)) {
            at_ = rule.pattern.size() != 1 ? start : new_start;
            return fail("LEADING and TRAILING replace a part of one word by a part of one word");
        }
        result_.rules.push_back(std::move(rule));
        return true;
    }

    // Pseudo-text, a literal, or an identifier with its qualifiers and subscripts.
    bool parse_operand(std::vector<TextWord>& out) {
        if (!more()) return fail("expected ==text==, a word or a literal");
        if (words_[at_].kind == WordKind::pseudo) return parse_pseudo_text(out);
        do {
            out.push_back(words_[at_++]);
        } while (more() && words_[at_].kind != WordKind::pseudo &&
                 (!words_[at_].space_before || take_qualifier(out)));
        return true;
    }

    bool take_qualifier(std::vector<TextWord>& out) {
        if (!at_word("OF") && !at_word("IN")) return false;
        out.push_back(words_[at_++]);
        return more();
    }

    bool parse_pseudo_text(std::vector<TextWord>& out) {
        const std::size_t start = at_++;
        while (at_ < words_.size() && words_[at_].kind != WordKind::pseudo) {
            out.push_back(words_[at_++]);
        }
        if (at_ >= words_.size()) {
            at_ = start;
            return fail("the pseudo-text is not closed: expected ==");
        }
        ++at_;
        return true;
    }

    const std::vector<TextWord>& words_;
    std::size_t at_;
    RulesResult result_;
};

}  // namespace

RulesResult parse_replace_rules(const std::vector<TextWord>& words, std::size_t at) {
    return RuleParser(words, at).parse();
}

}  // namespace records
