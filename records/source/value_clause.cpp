#include "records/source/value_clause.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string>
#include <utility>

#include "records/source/entry_parser.h"
#include "records/source/literals.h"

namespace records {

namespace {

std::string bytes_of_hex(const std::string& digits) {
    std::string out;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
        unsigned value = 0;
        std::from_chars(digits.data() + i, digits.data() + i + 2, value, 16);
        out += static_cast<char>(value);
    }
    return out;
}

std::optional<Literal> literal_of_word(const Token& token, ParseContext& context) {
    if (const auto number = read_number(token.text, context.decimal_point_is_comma)) {
        return Literal{Literal::Kind::number, *number, {}};
    }
    if (const auto name = figurative_name(token.text); !name.empty()) {
        return Literal{Literal::Kind::figurative, std::string(name), {}};
    }
    const auto found = context.constants.find(token.text);
    if (found != context.constants.end()) return found->second;
    return std::nullopt;
}

// A literal token, figurative constant, number or constant.
std::optional<Literal> parse_simple(TokenCursor& cursor, ParseContext& context) {
    const Token& token = cursor.peek();
    std::optional<Literal> literal;
    if (token.kind == WordKind::literal) {
        std::string why;
        literal = read_quoted_literal(token.text, why);
        if (!literal) {
            context.error(token, why);
            literal = Literal{};
        }
    } else if (token.kind == WordKind::word) {
        literal = literal_of_word(token, context);
    }
    if (!literal) return std::nullopt;
    literal->place = context.sources.place(token.position);
    cursor.advance();
    return literal;
}

// Puts the literal after "&" at the end of another.
void concatenate(Literal& first, Literal second) {
    const bool both_hex = first.kind == Literal::Kind::hex && second.kind == Literal::Kind::hex;
    if (!both_hex) {
        if (first.kind == Literal::Kind::hex) first.value = bytes_of_hex(first.value);
        if (second.kind == Literal::Kind::hex) second.value = bytes_of_hex(second.value);
        first.kind = Literal::Kind::text;
    }
    first.value += second.value;
}

std::optional<std::int64_t> integer_value(const Literal& literal) {
    if (literal.kind != Literal::Kind::number) return std::nullopt;
    std::int64_t value = 0;
    const char* end = literal.value.data() + literal.value.size();
    const auto result = std::from_chars(literal.value.data(), end, value);
    if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
    return value;
}

std::optional<std::int64_t> calculate(std::int64_t left, const std::string& sign,
                                      std::int64_t right) {
    std::int64_t result = 0;
    if (sign == "+" && !__builtin_add_overflow(left, right, &result)) return result;
    if (sign == "-" && !__builtin_sub_overflow(left, right, &result)) return result;
    if (sign == "*" && !__builtin_mul_overflow(left, right, &result)) return result;
    if (sign == "/" && right > 0) return left / right;
    return std::nullopt;
}

// A literal, or integers joined by + - * / and calculated from left to right.
std::optional<Literal> parse_constant(TokenCursor& cursor, ParseContext& context) {
    auto literal = parse_literal(cursor, context);
    while (literal && cursor.at(WordKind::word)) {
        const std::string sign = cursor.peek().text;
        if (sign != "+" && sign != "-" && sign != "*" && sign != "/") break;
        cursor.advance();
        const auto right = parse_literal(cursor, context);
        const auto first = integer_value(*literal);
        const auto second = right ? integer_value(*right) : std::nullopt;
        if (!first || !second) return std::nullopt;
        const auto result = calculate(*first, sign, *second);
        if (!result) return std::nullopt;
        literal->value = std::to_string(*result);
    }
    return literal;
}

// Numbers with commas but no blanks between them: "1,2,3" where the point is not a comma.
bool take_comma_list(TokenCursor& cursor, ParseContext& context, std::vector<LiteralRange>& out) {
    const Token& token = cursor.peek();
    if (context.decimal_point_is_comma || token.kind != WordKind::word) return false;
    std::string_view rest = token.text;
    if (rest.find(',') == std::string_view::npos) return false;
    std::vector<LiteralRange> values;
    while (!rest.empty()) {
        const std::size_t comma = std::min(rest.find(','), rest.size());
        const auto number = read_number(rest.substr(0, comma), false);
        if (!number) return false;
        const Place place = context.sources.place(token.position);
        values.push_back({Literal{Literal::Kind::number, *number, place}, std::nullopt});
        rest.remove_prefix(std::min(comma + 1, rest.size()));
    }
    cursor.advance();
    for (LiteralRange& value : values) out.push_back(std::move(value));
    return true;
}

void report_no_literal(TokenCursor& cursor, ParseContext& context) {
    context.error(cursor.peek(), "expected a literal, found " + quoted(cursor.peek()));
}

}  // namespace

std::optional<Literal> parse_literal(TokenCursor& cursor, ParseContext& context) {
    const bool is_all = cursor.at_word("ALL");
    if (is_all) cursor.advance();
    auto literal = parse_simple(cursor, context);
    while (literal && cursor.at(WordKind::symbol) && cursor.peek().text == "&") {
        cursor.advance();
        auto more = parse_simple(cursor, context);
        if (!more) break;
        concatenate(*literal, std::move(*more));
    }
    if (literal && is_all && literal->kind != Literal::Kind::figurative) {
        if (literal->kind == Literal::Kind::hex) literal->value = bytes_of_hex(literal->value);
        literal->kind = Literal::Kind::all;
    }
    return literal;
}

std::vector<LiteralRange> parse_condition_values(TokenCursor& cursor, ParseContext& context) {
    std::vector<LiteralRange> values;
    if (!cursor.take_word("VALUE") && !cursor.take_word("VALUES")) {
        context.error(cursor.peek(), "expected VALUE, found " + quoted(cursor.peek()));
        return values;
    }
    if (!cursor.take_word("IS")) cursor.take_word("ARE");
    while (!cursor.at_end() && !looks_like_entry(cursor)) {
        if (take_comma_list(cursor, context, values)) continue;
        auto low = parse_literal(cursor, context);
        if (!low) break;
        LiteralRange range{std::move(*low), std::nullopt};
        if (cursor.take_word("THRU") || cursor.take_word("THROUGH")) {
            range.high = parse_literal(cursor, context);
            if (!range.high) {
                report_no_literal(cursor, context);
                return values;
            }
        }
        values.push_back(std::move(range));
    }
    if (values.empty()) report_no_literal(cursor, context);
    return values;
}

bool define_constant(TokenCursor& cursor, ParseContext& context) {
    const int level = level_number(cursor.peek());
    if ((level != 78 && level != 1) || !cursor.at(WordKind::word, 1)) return false;
    const std::string name = cursor.peek(1).text;
    const bool is_constant =
        cursor.at_word("CONSTANT", 2) || (cursor.at_word("IS", 2) && cursor.at_word("CONSTANT", 3));
    if (level == 1 && !is_constant) return false;
    cursor.advance();
    cursor.advance();
    for (const std::string_view word : {"IS", "CONSTANT", "IS", "GLOBAL", "VALUE", "IS", "AS"}) {
        cursor.take_word(word);
    }
    if (auto value = parse_constant(cursor, context)) {
        context.constants.insert_or_assign(name, std::move(*value));
    }
    return true;
}

}  // namespace records
