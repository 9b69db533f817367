#include "records/source/condition_parser.h"

#include <utility>
#include <vector>

#include "records/source/literals.h"

namespace records {

namespace {

constexpr int MAX_PARENTHESES = 32;

// One side of a comparison: a name with its qualifiers, or a literal.
struct Operand {
    std::vector<std::string> name;
    std::optional<Literal> literal;
    Token token;
};

Expression::Relation negated(Expression::Relation relation) {
    using enum Expression::Relation;
    switch (relation) {
        case equal:
            return not_equal;
        case not_equal:
            return equal;
        case less:
            return greater_equal;
        case less_equal:
            return greater;
        case greater:
            return less_equal;
        case greater_equal:
            break;
    }
    return less;
}

// The relation that holds with the sides exchanged.
Expression::Relation mirrored(Expression::Relation relation) {
    using enum Expression::Relation;
    switch (relation) {
        case less:
            return greater;
        case less_equal:
            return greater_equal;
        case greater:
            return less;
        case greater_equal:
            return less_equal;
        case equal:
        case not_equal:
            break;
    }
    return relation;
}

class ConditionParser {
  public:
    ConditionParser(TokenCursor& cursor, ParseContext& context)
        : cursor_(cursor), context_(context) {}

    std::optional<Expression> parse() { return parse_or(); }

  private:
    using Result = std::optional<Expression>;

    Result parse_or() { return parse_chain(Expression::Kind::logical_or); }
    Result parse_chain(Expression::Kind kind);
    Result parse_not();
    Result parse_parentheses();
    Result parse_primary();
    Result parse_after_operand(Operand left);
    Result parse_comparison(Operand left, Expression::Relation relation);
    Result parse_abbreviation();
    std::optional<Operand> parse_operand();
    bool parse_qualifiers(Operand& operand);
    std::optional<Literal> parse_literal(const Token& token);
    bool at_relation() const;
    std::optional<Expression::Relation> parse_relation();
    std::optional<Expression::Relation> parse_order(Expression::Relation strict,
                                                    Expression::Relation or_equal);
    Result make_class_test(const Operand& left, Expression::Class tested, bool negate);
    Result make_sign_test(const Operand& left, Expression::Relation relation, bool negate);

    Result fail(const std::string& expected) {
        context_.error(cursor_.peek(),
                       "expected " + expected + ", found " + quoted(cursor_.peek()));
        return std::nullopt;
    }

    // Where the condition cannot be complete yet, it goes on in the next directive line.
    void skip_line_end() {
        if (cursor_.at(WordKind::directive_end) && cursor_.at(WordKind::directive_begin, 1)) {
            cursor_.advance();
            cursor_.advance();
        }
    }

    bool take_connective(std::string_view word) {
        if (depth_ > 0) skip_line_end();
        if (cursor_.take_word(word)) return true;
        if (!cursor_.at(WordKind::directive_end) || !cursor_.at(WordKind::directive_begin, 1) ||
            !cursor_.at_word(word, 2)) {
            return false;
        }
        skip_line_end();
        return cursor_.take_word(word);
    }

    Expression make(Expression::Kind kind, const Token& token) const {
        Expression expression;
        expression.kind = kind;
        expression.place = context_.sources.place(token.position);
        return expression;
    }

    static Expression negate(Expression operand) {
        Expression expression;
        expression.kind = Expression::Kind::logical_not;
        expression.place = operand.place;
        expression.operands.push_back(std::move(operand));
        return expression;
    }

    TokenCursor& cursor_;
    ParseContext& context_;
    int depth_ = 0;                        // of parentheses
    std::optional<Operand> last_subject_;  // for "A = 1 OR 2" and "A > 1 AND < 5"
    Expression::Relation last_relation_ = Expression::Relation::equal;
};

// Operands joined by AND, or chains of AND joined by OR.
ConditionParser::Result ConditionParser::parse_chain(Expression::Kind kind) {
    const bool is_or = kind == Expression::Kind::logical_or;
    const Token start = cursor_.peek();
    std::vector<Expression> operands;
    do {
        Result operand = is_or ? parse_chain(Expression::Kind::logical_and) : parse_not();
        if (!operand) return std::nullopt;
        operands.push_back(std::move(*operand));
    } while (take_connective(is_or ? "OR" : "AND"));
    if (operands.size() == 1) return std::move(operands.front());
    Expression expression = make(kind, start);
    expression.operands = std::move(operands);
    return expression;
}

ConditionParser::Result ConditionParser::parse_not() {
    skip_line_end();
    bool is_negated = false;
    while (cursor_.take_word("NOT")) {
        is_negated = !is_negated;
        skip_line_end();
    }
    Result operand = cursor_.at(WordKind::open) ? parse_parentheses() : parse_primary();
    if (operand && is_negated) return negate(std::move(*operand));
    return operand;
}

ConditionParser::Result ConditionParser::parse_parentheses() {
    if (depth_ >= MAX_PARENTHESES) {
        context_.error(cursor_.peek(), "parentheses are nested more than 32 deep");
        return std::nullopt;
    }
    cursor_.advance();
    ++depth_;
    Result inner = parse_or();
    if (inner) skip_line_end();
    --depth_;
    if (!inner) return std::nullopt;
    if (!cursor_.take(WordKind::close)) return fail("AND, OR or ')'");
    return inner;
}

ConditionParser::Result ConditionParser::parse_primary() {
    if (last_subject_ && at_relation()) return parse_abbreviation();
    const Token start = cursor_.peek();
    if (cursor_.take_word("FIRST")) return make(Expression::Kind::is_first, start);
    if (cursor_.take_word("LAST")) return make(Expression::Kind::is_last, start);
    auto left = parse_operand();
    if (!left) return std::nullopt;
    return parse_after_operand(std::move(*left));
}

// Only a relation and an object: the subject is that of the comparison before.
ConditionParser::Result ConditionParser::parse_abbreviation() {
    const auto relation = parse_relation();
    if (!relation) return std::nullopt;
    return parse_comparison(*last_subject_, *relation);
}

ConditionParser::Result ConditionParser::parse_after_operand(Operand left) {
    if (at_relation()) {
        const auto relation = parse_relation();
        if (!relation) return std::nullopt;
        return parse_comparison(std::move(left), *relation);
    }
    const bool has_is = cursor_.take_word("IS");
    const bool is_negated = cursor_.take_word("NOT");
    if (has_is || is_negated) skip_line_end();
    using Class = Expression::Class;
    using Relation = Expression::Relation;
    if (!left.name.empty()) {
        if (cursor_.take_word("NUMERIC")) return make_class_test(left, Class::numeric, is_negated);
        if (cursor_.take_word("ALPHABETIC")) {
            return make_class_test(left, Class::alphabetic, is_negated);
        }
        if (cursor_.take_word("POSITIVE")) {
            return make_sign_test(left, Relation::greater, is_negated);
        }
        if (cursor_.take_word("NEGATIVE")) return make_sign_test(left, Relation::less, is_negated);
        if (figurative_name(cursor_.peek().text) == "ZERO" && cursor_.at(WordKind::word)) {
            cursor_.advance();
            return make_sign_test(left, Relation::equal, is_negated);
        }
    }
    if (has_is || is_negated) return fail("a comparison, NUMERIC or ALPHABETIC");
    if (left.literal) {
        if (!last_subject_) return fail("a comparison (=, <>, <, <=, >, >=)");
        Expression expression = make(Expression::Kind::comparison, left.token);
        expression.relation = last_relation_;
        expression.name = last_subject_->name;
        expression.literal = std::move(left.literal);
        return expression;
    }
    Expression expression = make(Expression::Kind::condition_name, left.token);
    expression.name = std::move(left.name);
    return expression;
}

ConditionParser::Result ConditionParser::parse_comparison(Operand left,
                                                          Expression::Relation relation) {
    skip_line_end();
    auto right = parse_operand();
    if (!right) return std::nullopt;
    Expression expression = make(Expression::Kind::comparison, left.token);
    if (left.literal) {
        if (right->literal) {
            context_.error(left.token, "expected a data name on one side of the comparison");
            return std::nullopt;
        }
        std::swap(left, *right);
        relation = mirrored(relation);
    }
    last_subject_ = left;
    last_relation_ = relation;
    expression.relation = relation;
    expression.name = std::move(left.name);
    expression.literal = std::move(right->literal);
    expression.other = std::move(right->name);
    return expression;
}

ConditionParser::Result ConditionParser::make_class_test(const Operand& left,
                                                         Expression::Class tested,
                                                         bool is_negated) {
    Expression expression = make(Expression::Kind::class_test, left.token);
    expression.class_tested = tested;
    expression.name = left.name;
    if (is_negated) return negate(std::move(expression));
    return expression;
}

ConditionParser::Result ConditionParser::make_sign_test(const Operand& left,
                                                        Expression::Relation relation,
                                                        bool is_negated) {
    Expression expression = make(Expression::Kind::comparison, left.token);
    expression.relation = is_negated ? negated(relation) : relation;
    expression.name = left.name;
    expression.literal = Literal{Literal::Kind::number, "0", expression.place};
    return expression;
}

std::optional<Literal> ConditionParser::parse_literal(const Token& token) {
    std::optional<Literal> literal;
    if (token.kind == WordKind::literal) {
        std::string why;
        literal = read_quoted_literal(token.text, why);
        if (!literal) context_.error(token, why);
    } else if (const auto number = read_number(token.text, context_.decimal_point_is_comma)) {
        literal = Literal{Literal::Kind::number, *number, {}};
    } else if (const auto name = figurative_name(token.text); !name.empty()) {
        literal = Literal{Literal::Kind::figurative, std::string(name), {}};
    } else if (const auto found = context_.constants.find(token.text);
               found != context_.constants.end()) {
        literal = found->second;
    }
    if (literal) literal->place = context_.sources.place(token.position);
    return literal;
}

std::optional<Operand> ConditionParser::parse_operand() {
    Operand operand;
    operand.token = cursor_.peek();
    if (cursor_.at(WordKind::literal) || cursor_.at(WordKind::word)) {
        const bool is_all = cursor_.at_word("ALL") && cursor_.at(WordKind::literal, 1);
        if (is_all) cursor_.advance();
        operand.literal = parse_literal(cursor_.peek());
        if (operand.literal) {
            if (is_all && operand.literal->kind == Literal::Kind::text) {
                operand.literal->kind = Literal::Kind::all;
            }
            cursor_.advance();
            return operand;
        }
        if (cursor_.at(WordKind::literal)) return std::nullopt;
    }
    if (!cursor_.at(WordKind::word) || !is_data_name(cursor_.peek().text)) {
        fail("a data name, a condition name or a literal");
        return std::nullopt;
    }
    operand.name.push_back(cursor_.peek().text);
    cursor_.advance();
    if (!parse_qualifiers(operand)) return std::nullopt;
    return operand;
}

bool ConditionParser::parse_qualifiers(Operand& operand) {
    while (cursor_.take_word("OF") || cursor_.take_word("IN")) {
        if (!cursor_.at(WordKind::word) || !is_data_name(cursor_.peek().text)) {
            fail("the name of a group or record");
            return false;
        }
        operand.name.push_back(cursor_.peek().text);
        cursor_.advance();
    }
    if (!cursor_.at(WordKind::open)) return true;
    context_.error(cursor_.peek(), "items of tables cannot be used in conditions");
    return false;
}

// At a relation, with or without IS and NOT before it.
bool ConditionParser::at_relation() const {
    std::size_t ahead = 0;
    if (cursor_.at_word("IS") || cursor_.at_word("ARE")) ++ahead;
    if (cursor_.at_word("NOT", ahead)) ++ahead;
    if (cursor_.at(WordKind::symbol, ahead)) return cursor_.peek(ahead).text != "&";
    for (const std::string_view word : {"EQUAL", "EQUALS", "GREATER", "LESS"}) {
        if (cursor_.at_word(word, ahead)) return true;
    }
    return false;
}

// '<' or '>' or a word for it has been taken: looks for "or equal".
std::optional<Expression::Relation> ConditionParser::parse_order(Expression::Relation strict,
                                                                 Expression::Relation or_equal) {
    cursor_.take_word("THAN");
    if (!cursor_.at_word("OR") || !cursor_.at_word("EQUAL", 1)) return strict;
    cursor_.advance();
    cursor_.advance();
    cursor_.take_word("TO");
    return or_equal;
}

std::optional<Expression::Relation> ConditionParser::parse_relation() {
    using enum Expression::Relation;
    if (!cursor_.take_word("IS")) cursor_.take_word("ARE");
    const bool is_negated = cursor_.take_word("NOT");
    const std::string sign = cursor_.peek().text;
    cursor_.advance();
    const bool joined = cursor_.at(WordKind::symbol) && !cursor_.peek().space_before;
    const std::string next = joined ? cursor_.peek().text : std::string();
    std::optional<Expression::Relation> relation = equal;
    if (sign == "<" && (next == ">" || next == "=")) {
        cursor_.advance();
        relation = next == ">" ? not_equal : less_equal;
    } else if (sign == ">" && next == "=") {
        cursor_.advance();
        relation = greater_equal;
    } else if (sign == "<" || sign == "LESS") {
        relation = parse_order(less, less_equal);
    } else if (sign == ">" || sign == "GREATER") {
        relation = parse_order(greater, greater_equal);
    } else {
        cursor_.take_word("TO");
    }
    if (is_negated) relation = negated(*relation);
    return relation;
}

}  // namespace

std::optional<Expression> parse_condition(TokenCursor& cursor, ParseContext& context) {
    return ConditionParser(cursor, context).parse();
}

}  // namespace records
