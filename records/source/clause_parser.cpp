#include "records/source/clause_parser.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <optional>
#include <utility>

#include "records/source/directives.h"
#include "records/source/entry_parser.h"
#include "records/source/literals.h"
#include "records/source/picture.h"
#include "records/source/value_clause.h"

namespace records {

namespace {

constexpr int MAX_OCCURS = 268'435'456;
constexpr std::size_t MAX_PICTURE_TEXT = 4096;

const char* clause_name(Clause clause) {
    switch (clause) {
        case Clause::picture:
            return "PICTURE";
        case Clause::redefines:
            return "REDEFINES";
        case Clause::usage:
        case Clause::usage_word:
            return "USAGE";
        case Clause::sign:
            return "SIGN";
        case Clause::occurs:
            return "OCCURS";
        case Clause::synchronized:
            return "SYNCHRONIZED";
        case Clause::justified:
            return "JUSTIFIED";
        case Clause::blank:
            return "BLANK WHEN ZERO";
        case Clause::value:
            return "VALUE";
        case Clause::none:
        case Clause::without_effect:
        case Clause::is:
            break;
    }
    return "";
}

// The digits that stand for a constant used as a count; nothing when it is not a constant of that
// kind.
std::optional<std::string> constant_count(const ParseContext& context, const std::string& name) {
    const auto found = context.constants.find(name);
    if (found == context.constants.end() || found->second.kind != Literal::Kind::number ||
        !is_integer(found->second.value)) {
        return std::nullopt;
    }
    return found->second.value;
}

}  // namespace

void ClauseParser::parse() {
    while (!failed_ && !cursor_.at_end()) {
        if (cursor_.take(WordKind::period)) return;
        if (cursor_.at(WordKind::directive_begin)) {
            context_.error(cursor_.peek(), "a directive must precede the level number of its item");
            skip_directives(cursor_);
            continue;
        }
        if (looks_like_entry(cursor_)) {
            context_.error(cursor_.peek(),
                           "expected a period at the end of the entry before this one");
            return;
        }
        const Clause clause = clause_of(cursor_.peek());
        if (clause != Clause::none) {
            parse_clause(clause);
        } else if (is_unsupported_usage(cursor_.peek())) {
            parse_unsupported_usage();
        } else {
            skip_unknown();
        }
    }
    if (!failed_) {
        context_.error(cursor_.peek(), "expected a period at the end of the entry");
        return;
    }
    while (!cursor_.at_end() && !looks_like_entry(cursor_) && !cursor_.take(WordKind::period)) {
        cursor_.advance();
    }
}

void ClauseParser::check_first(Clause clause, const Token& start) {
    if (clause == Clause::is || clause == Clause::without_effect) return;
    if (clause == Clause::usage_word) clause = Clause::usage;
    const auto bit = static_cast<std::size_t>(clause);
    if (seen_.test(bit)) {
        context_.error(start,
                       std::string("the entry has a ") + clause_name(clause) + " clause already");
    }
    seen_.set(bit);
}

void ClauseParser::parse_clause(Clause clause) {
    const Token start = cursor_.peek();
    check_first(clause, start);
    switch (clause) {
        case Clause::picture:
            return parse_picture();
        case Clause::redefines:
            return parse_redefines();
        case Clause::usage:
            return parse_usage();
        case Clause::usage_word:
            return parse_usage_word();
        case Clause::sign:
            return parse_sign();
        case Clause::occurs:
            return parse_occurs();
        case Clause::synchronized:
            cursor_.advance();
            if (!cursor_.take_word("LEFT")) cursor_.take_word("RIGHT");
            item_.synchronized = true;
            return;
        case Clause::justified:
            cursor_.advance();
            cursor_.take_word("RIGHT");
            item_.justified = true;
            return;
        case Clause::blank:
            return parse_blank();
        case Clause::value:
            return parse_value();
        case Clause::without_effect:
            cursor_.advance();
            if (cursor_.take_word("AS")) cursor_.take(WordKind::literal);
            return;
        case Clause::none:
        case Clause::is:
            cursor_.advance();
            return;
    }
}

// The picture is everything up to the next blank. Names of constants may stand for counts.
void ClauseParser::parse_picture() {
    cursor_.advance();
    if (cursor_.at_word("IS") && cursor_.peek(1).kind != WordKind::period) cursor_.advance();
    const Token start = cursor_.peek();
    if (!cursor_.at(WordKind::word)) return fail("a picture");
    std::string text;
    do {
        const Token& token = cursor_.peek();
        const bool is_count = token.kind == WordKind::word && text.ends_with('(');
        const auto count = is_count ? constant_count(context_, token.text) : std::nullopt;
        text += count ? *count : token.text;
        cursor_.advance();
    } while (!cursor_.at_end() && !cursor_.peek().space_before && !cursor_.at(WordKind::period) &&
             text.size() < MAX_PICTURE_TEXT);
    PictureResult result =
        analyse_picture(text, {context_.decimal_point_is_comma, context_.currency});
    if (!result.error.empty()) {
        Token at = start;
        at.position.column += static_cast<std::uint32_t>(result.error_at);
        context_.error(at, "in the picture " + quoted({WordKind::word, true, false, text, {}, {}}) +
                               ": " + result.error);
        return;
    }
    result.picture.place = context_.sources.place(start.position);
    item_.picture = std::move(result.picture);
}

void ClauseParser::parse_redefines() {
    cursor_.advance();
    const Token& name = cursor_.peek();
    if (name.kind != WordKind::word || !is_data_name(name.text)) return fail("a data name");
    item_.redefines = name.text;
    item_.redefines_place = context_.sources.place(name.position);
    cursor_.advance();
}

void ClauseParser::parse_usage() {
    cursor_.advance();
    cursor_.take_word("IS");
    if (!usage_of(cursor_.peek())) {
        if (is_unsupported_usage(cursor_.peek())) return parse_unsupported_usage();
        return fail("a usage (DISPLAY, COMP, COMP-3, BINARY ...)");
    }
    parse_usage_word();
}

// The item's size is not known, so nothing after it would be read from the right place.
void ClauseParser::parse_unsupported_usage() {
    context_.error(cursor_.peek(),
                   "usage " + cursor_.peek().text +
                       " is not supported; describe the bytes of the item with PIC X(n), and with "
                       "the directive \"hex\" before it when they are not text");
    while (!cursor_.at_end() && !looks_like_entry(cursor_) && !cursor_.at(WordKind::period)) {
        cursor_.advance();
    }
    // A missing picture counts as a picture, so that no second message asks for one.
    if (!item_.picture) item_.picture = analyse_picture("X", {}).picture;
}

void ClauseParser::parse_usage_word() {
    item_.usage = usage_of(cursor_.peek());
    if (cursor_.peek().text.starts_with("UNSIGNED-")) item_.binary_unsigned = true;
    cursor_.advance();
    parse_binary_sign();
}

void ClauseParser::parse_binary_sign() {
    if (!cursor_.at_word("SIGNED") && !cursor_.at_word("UNSIGNED")) return;
    item_.binary_unsigned = cursor_.at_word("UNSIGNED");
    cursor_.advance();
}

void ClauseParser::parse_sign() {
    if (cursor_.take_word("SIGN")) cursor_.take_word("IS");
    if (!cursor_.at_word("LEADING") && !cursor_.at_word("TRAILING")) {
        return fail("LEADING or TRAILING");
    }
    item_.sign_leading = cursor_.at_word("LEADING");
    cursor_.advance();
    if (cursor_.take_word("SEPARATE")) {
        item_.sign_separate = true;
        cursor_.take_word("CHARACTER");
    }
}

void ClauseParser::parse_occurs() {
    const Token start = cursor_.peek();
    cursor_.advance();
    item_.occurs = Occurs{};
    item_.occurs->place = context_.sources.place(start.position);
    if (item_.level == 1 || item_.level == 77) {
        context_.error(
            start, "OCCURS is not allowed at level " + std::string(item_.level == 1 ? "01" : "77"));
    }
    parse_occurs_count();
    if (failed_) {
        item_.occurs.reset();
        return;
    }
    parse_occurs_phrases();
}

bool ClauseParser::parse_count(int& count) {
    const Token token = cursor_.peek();
    std::string digits = token.text;
    if (token.kind == WordKind::word && !is_integer(digits)) {
        if (const auto constant = constant_count(context_, digits)) digits = *constant;
    }
    if (cursor_.at_word("UNBOUNDED")) {
        context_.error(token,
                       "a table without a largest size is not supported: give the number of "
                       "occurrences that a record has at most");
        failed_ = true;
        return false;
    }
    if (token.kind != WordKind::word || !is_integer(digits)) {
        fail("the number of occurrences, or a constant that has been defined");
        return false;
    }
    cursor_.advance();
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), count);
    if (result.ec == std::errc() && count <= MAX_OCCURS) return true;
    context_.error(token, "more than 268435456 occurrences");
    count = 1;
    return true;
}

void ClauseParser::parse_occurs_count() {
    Occurs& occurs = *item_.occurs;
    const Token start = cursor_.peek();
    if (!parse_count(occurs.max)) return;
    occurs.min = occurs.max;
    Token max_token = start;
    const bool is_range = cursor_.take_word("TO");
    if (is_range) {
        max_token = cursor_.peek();
        if (!parse_count(occurs.max)) return;
    }
    cursor_.take_word("TIMES");
    if (occurs.max == 0) {
        context_.error(max_token, "a table has at least one occurrence");
        occurs.max = 1;
        occurs.min = 1;
    } else if (occurs.min > occurs.max || (is_range && occurs.min == occurs.max)) {
        context_.error(max_token, "expected a number greater than " + std::to_string(occurs.min));
        occurs.min = occurs.max;
    }
    if (is_range && !cursor_.at_word("DEPENDING")) {
        context_.error(cursor_.peek(), "expected DEPENDING ON, found " + quoted(cursor_.peek()));
    }
}

void ClauseParser::parse_occurs_phrases() {
    for (;;) {
        if (cursor_.take_word("DEPENDING")) {
            parse_depending_on();
        } else if (cursor_.take_word("ASCENDING") || cursor_.take_word("DESCENDING")) {
            cursor_.take_word("KEY");
            cursor_.take_word("IS");
            skip_names();
        } else if (cursor_.take_word("INDEXED")) {
            cursor_.take_word("BY");
            skip_names();
        } else {
            return;
        }
        if (failed_) return;
    }
}

void ClauseParser::parse_depending_on() {
    cursor_.take_word("ON");
    Occurs& occurs = *item_.occurs;
    if (!cursor_.at(WordKind::word) || !is_data_name(cursor_.peek().text)) {
        return fail("the data name that holds the number of occurrences");
    }
    occurs.depending_on = cursor_.peek().text;
    cursor_.advance();
    // Without TO the table has one occurrence at least.
    if (occurs.min == occurs.max) occurs.min = std::min(1, occurs.max);
    while ((cursor_.at_word("OF") || cursor_.at_word("IN")) && cursor_.at(WordKind::word, 1)) {
        occurs.depending_on_of.push_back(cursor_.peek(1).text);
        cursor_.advance();
        cursor_.advance();
    }
}

// Key and index names: at least one, up to the next clause.
void ClauseParser::skip_names() {
    if (!cursor_.at(WordKind::word) || !is_data_name(cursor_.peek().text)) return fail("a name");
    cursor_.advance();
    while (cursor_.at(WordKind::word) && !looks_like_entry(cursor_) &&
           is_data_name(cursor_.peek().text) && clause_of(cursor_.peek()) == Clause::none &&
           !cursor_.at_word("ASCENDING") && !cursor_.at_word("DESCENDING") &&
           !cursor_.at_word("INDEXED") && !cursor_.at_word("DEPENDING")) {
        cursor_.advance();
    }
}

void ClauseParser::parse_blank() {
    cursor_.advance();
    cursor_.take_word("WHEN");
    if (!cursor_.at(WordKind::word) || figurative_name(cursor_.peek().text) != "ZERO") {
        return fail("ZERO");
    }
    cursor_.advance();
    item_.blank_when_zero = true;
}

// Values of items have no meaning for the layout: they are skipped.
void ClauseParser::parse_value() {
    cursor_.advance();
    if (!cursor_.take_word("IS")) cursor_.take_word("ARE");
    if (cursor_.at_word("LENGTH") || cursor_.at_word("BYTE-LENGTH")) {
        cursor_.advance();
        if (!cursor_.take_word("OF")) cursor_.take_word("IN");
        cursor_.advance();
        return;
    }
    if (parse_literal(cursor_, context_)) {
        while (!looks_like_entry(cursor_) && parse_literal(cursor_, context_)) {
        }
        return;
    }
    const bool is_name = cursor_.at(WordKind::word) && is_data_name(cursor_.peek().text) &&
                         clause_of(cursor_.peek()) == Clause::none;
    if (!is_name) return fail("a literal");
    cursor_.advance();
}

void ClauseParser::skip_unknown() {
    const Token start = cursor_.peek();
    if (start.kind != WordKind::word) {
        std::string message = "expected a clause or a period, found " + quoted(start);
        if (start.kind == WordKind::colon) message += "; is COPY ... REPLACING missing?";
        context_.error(start, std::move(message));
        failed_ = true;
        if (start.kind == WordKind::broken) cursor_.advance();
        return;
    }
    Token text = start;
    cursor_.advance();
    while (!cursor_.at_end() && !looks_like_entry(cursor_) && !cursor_.at(WordKind::period) &&
           clause_of(cursor_.peek()) == Clause::none && !cursor_.at(WordKind::directive_begin) &&
           !cursor_.at(WordKind::broken)) {
        if (text.text.size() < 80) {
            if (cursor_.peek().space_before) text.text += ' ';
            text.text += cursor_.peek().text;
        }
        cursor_.advance();
    }
    context_.warning(start, "unknown clause " + quoted(text) + " is ignored");
}

}  // namespace records
