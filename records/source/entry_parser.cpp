#include "records/source/entry_parser.h"

#include <array>
#include <string>
#include <utility>

#include "records/source/clause_parser.h"
#include "records/source/value_clause.h"

namespace records {

namespace {

bool is_one_of(const Token& token, std::initializer_list<std::string_view> words) {
    for (const std::string_view word : words) {
        if (token.text == word) return true;
    }
    return false;
}

// Clauses that begin with a single word and need something after it other than such a word.
bool is_strong(const Token& token) {
    const Clause clause = clause_of(token);
    return clause == Clause::picture || clause == Clause::redefines || clause == Clause::usage ||
           clause == Clause::occurs || clause == Clause::value;
}

// Whether a PICTURE clause follows between `ahead` and the entry's period.
bool has_picture_clause(const TokenCursor& cursor, std::size_t ahead) {
    for (; cursor.index() + ahead < cursor.end(); ++ahead) {
        const Token& token = cursor.peek(ahead);
        const bool is_next_entry = token.first_on_line && level_number(token) != 0;
        if (token.kind == WordKind::period || is_next_entry) return false;
        if (clause_of(token) == Clause::picture) return true;
    }
    return false;
}

// A usage that takes no PICTURE, and yet a PICTURE for it, in this entry or in the first below it:
// "05 FLOAT PIC X(4)."
bool cannot_be_usage(const TokenCursor& cursor, int level) {
    if (takes_picture(*usage_of(cursor.peek()))) return false;
    if (!cursor.at(WordKind::period, 1)) return has_picture_clause(cursor, 1);
    const int next = level_number(cursor.peek(2));
    return next > level && next <= 49 && has_picture_clause(cursor, 3);
}

bool is_usage_name_here(const TokenCursor& cursor, int level) {
    const Token& token = cursor.peek();
    const Token& next = cursor.peek(1);
    const Clause clause = clause_of(next);
    if (clause == Clause::usage || clause == Clause::usage_word) return true;
    if (cannot_be_usage(cursor, level)) return true;
    if (is_one_of(token, {"INDEX", "POINTER", "DISPLAY-1"})) {
        return next.kind == WordKind::period || is_strong(next);
    }
    return next.kind == WordKind::period && is_one_of(token, {"DISPLAY", "NATIONAL"});
}

// Many words that begin clauses are also used as names: "05 VALUE PIC 9(5).", "05 INDEX." A word is
// a name when it could not begin its clause where it stands. `level`: of the entry.
bool is_name_here(const TokenCursor& cursor, int level) {
    const Token& next = cursor.peek(1);
    switch (clause_of(cursor.peek())) {
        case Clause::none:
            return true;
        case Clause::usage_word:
            return is_usage_name_here(cursor, level);
        default:
            return next.kind == WordKind::period || is_strong(next);
    }
}

class EntryParser {
  public:
    EntryParser(TokenCursor& cursor, ParseContext& context) : cursor_(cursor), context_(context) {}

    std::optional<Entry> parse() {
        const Directives directives = parse_directives(cursor_, context_);
        if (cursor_.at_end()) {
            if (directives.first) report_lonely(directives);
            return std::nullopt;
        }
        if (cursor_.take(WordKind::period)) return std::nullopt;
        Entry entry;
        entry.start = cursor_.peek();
        entry.level = level_number(entry.start);
        if (entry.level == 0) {
            report_no_level();
            return std::nullopt;
        }
        const bool describes_data = entry.level <= 49 || entry.level == 77;
        if (directives.first && !describes_data) report_lonely(directives);
        if (!describes_data || is_constant()) return parse_other(std::move(entry));
        cursor_.advance();
        parse_item(entry, directives);
        return entry;
    }

  private:
    void report_lonely(const Directives& directives) {
        context_.error(*directives.first, "a directive must precede the data item it is for");
    }

    void report_no_level() {
        const Token token = cursor_.peek();
        if (token.kind == WordKind::word && is_integer(token.text)) {
            context_.error(token, "level " + token.text +
                                      " does not exist: expected 01 to 49, 66, 77, 78 or 88");
        } else {
            context_.error(token, "expected a level number, found " + quoted(token));
        }
        cursor_.advance();
        if (token.kind != WordKind::broken) skip_entry();
    }

    // To after the period, or to where another entry seems to begin.
    void skip_entry() {
        while (!cursor_.at_end() && !looks_like_entry(cursor_)) {
            if (cursor_.take(WordKind::period)) return;
            cursor_.advance();
        }
    }

    bool is_constant() const {
        return cursor_.at_word("CONSTANT", 2) ||
               (cursor_.at_word("IS", 2) && cursor_.at_word("CONSTANT", 3));
    }

    std::optional<Entry> parse_other(Entry entry) {
        if (entry.level == 88) {
            cursor_.advance();
            parse_condition_name(entry);
            return entry;
        }
        cursor_.advance();
        skip_entry();
        return std::nullopt;
    }

    // The name at the cursor; empty when there is no valid one, which is reported.
    std::string take_name() {
        const Token token = cursor_.peek();
        if (token.kind != WordKind::word || !is_data_name(token.text)) {
            std::string message = "expected a data name, found " + quoted(token);
            if (cursor_.at(WordKind::colon) || cursor_.at(WordKind::colon, 1)) {
                message += "; is COPY ... REPLACING missing?";
            }
            context_.error(token, std::move(message));
            return {};
        }
        cursor_.advance();
        return token.text;
    }

    void parse_condition_name(Entry& entry) {
        ConditionName condition;
        condition.place = context_.sources.place(cursor_.peek().position);
        condition.name = take_name();
        if (!condition.name.empty()) {
            condition.values = parse_condition_values(cursor_, context_);
            entry.condition = std::move(condition);
        }
        if (cursor_.take_word("WHEN") || cursor_.at_word("FALSE")) {
            skip_entry();
        } else {
            finish_condition(entry.condition && !entry.condition->values.empty());
        }
    }

    void finish_condition(bool was_right) {
        if (cursor_.take(WordKind::period)) return;
        if (was_right && looks_like_entry(cursor_)) {
            context_.error(cursor_.peek(),
                           "expected a period at the end of the entry before this one");
        } else if (was_right) {
            context_.error(cursor_.peek(),
                           "expected a literal or a period, found " + quoted(cursor_.peek()));
        }
        skip_entry();
    }

    void parse_item(Entry& entry, const Directives& directives) {
        entry.item = std::make_unique<DataItem>();
        DataItem& item = *entry.item;
        item.level = entry.level;
        item.place = context_.sources.place(cursor_.peek().position);
        item.when = directives.when;
        item.xml_name = directives.xml_name;
        item.hex = directives.hex;
        item.hidden = directives.hide;
        parse_item_name(entry, item);
        ClauseParser(cursor_, context_, item).parse();
    }

    void parse_item_name(const Entry& entry, DataItem& item) {
        if (cursor_.take_word("FILLER")) return;
        const bool can_be_unnamed =
            cursor_.at(WordKind::period) || cursor_.at_end() ||
            (cursor_.at(WordKind::word) && !is_name_here(cursor_, entry.level));
        if (can_be_unnamed) {
            item.place = context_.sources.place(entry.start.position);
            return;
        }
        item.name = take_name();
        if (item.name.empty()) skip_bad_name();
    }

    void skip_bad_name() {
        while (!cursor_.at_end() && !cursor_.at(WordKind::period) && !looks_like_entry(cursor_) &&
               clause_of(cursor_.peek()) == Clause::none) {
            cursor_.advance();
        }
    }

    TokenCursor& cursor_;
    ParseContext& context_;
};

}  // namespace

int level_number(const Token& token) {
    if (token.kind != WordKind::word || token.text.size() > 2 || !is_integer(token.text)) return 0;
    const int level = std::stoi(token.text);
    const bool exists =
        (level >= 1 && level <= 49) || level == 66 || level == 77 || level == 78 || level == 88;
    return exists ? level : 0;
}

bool looks_like_entry(const TokenCursor& cursor) {
    const Token& token = cursor.peek();
    const Token& next = cursor.peek(1);
    if (!token.first_on_line || level_number(token) == 0 || next.kind != WordKind::word) {
        return false;
    }
    return !is_one_of(next, {"THRU", "THROUGH", "TIMES", "TO", "WHEN", "FALSE", "DEPENDING"}) &&
           is_data_name(next.text);
}

std::optional<Entry> parse_entry(TokenCursor& cursor, ParseContext& context) {
    return EntryParser(cursor, context).parse();
}

}  // namespace records
