#include "records/layout/resolve.h"

#include <algorithm>

#include "host/utf8.h"
#include "records/hexadecimal.h"
#include "records/layout/placement.h"

namespace records {
namespace {

std::string qualified(const std::vector<std::string>& name) {
    std::string text;
    for (const std::string& part : name) text += (text.empty() ? "" : " OF ") + part;
    return text;
}

bool is_inside(const Node& node, const Node& group) {
    for (const Node* at = &node; at != nullptr; at = at->parent) {
        if (at == &group) return true;
    }
    return false;
}

// True when the groups around the item carry the qualifying names, in order.
bool qualifies(const Node* around, const std::vector<std::string>& name) {
    std::size_t matched = 1;
    for (; around != nullptr && matched < name.size(); around = around->parent) {
        if (around->source->name == name[matched]) ++matched;
    }
    return matched == name.size();
}

// Description files hold UTF-8 only.
bool is_utf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = utf8::first_character(text).length;
        if (length == 1 && static_cast<std::uint8_t>(text[0]) >= 0x80) return false;
        text.remove_prefix(length);
    }
    return true;
}

Operand operand_of(const Literal& literal) {
    Operand operand;
    operand.value = literal.value;
    switch (literal.kind) {
        case Literal::Kind::number:
            operand.kind = Operand::Kind::number;
            break;
        case Literal::Kind::text:
            operand.kind = Operand::Kind::text;
            if (!is_utf8(literal.value)) {
                operand.kind = Operand::Kind::hex;
                operand.value = hexadecimal(literal.value);
            }
            break;
        case Literal::Kind::figurative:
            operand.kind = Operand::Kind::figurative;
            break;
        case Literal::Kind::hex:
            operand.kind = Operand::Kind::hex;
            break;
        case Literal::Kind::all:
            operand.kind = Operand::Kind::all;
            break;
    }
    return operand;
}

Test comparison(const Operand& left, Expression::Relation relation, const Operand& right) {
    Test test;
    test.left = left;
    test.relation = relation;
    test.right = right;
    return test;
}

Test joined(Test::Kind kind, std::vector<Test> operands) {
    if (operands.size() == 1) return std::move(operands.front());
    Test test;
    test.kind = kind;
    test.operands = std::move(operands);
    return test;
}

Test values_test(const ConditionName& condition, const Operand& item) {
    std::vector<Test> any;
    for (const LiteralRange& range : condition.values) {
        const Operand low = operand_of(range.low);
        if (!range.high) {
            any.push_back(comparison(item, Expression::Relation::equal, low));
            continue;
        }
        any.push_back(
            joined(Test::Kind::logical_and,
                   {comparison(item, Expression::Relation::greater_equal, low),
                    comparison(item, Expression::Relation::less_equal, operand_of(*range.high))}));
    }
    return joined(Test::Kind::logical_or, std::move(any));
}

class Resolver {
  public:
    Resolver(const Node& at, const NameScope& scope, Diagnostics& diagnostics)
        : at_(at), scope_(scope), diagnostics_(diagnostics) {}

    std::optional<Test> resolve(const Expression& expression, int depth) {
        if (depth > MAX_DEPTH) return error(expression, "the condition is nested too deep");
        switch (expression.kind) {
            case Expression::Kind::logical_and:
                return connective(Test::Kind::logical_and, expression, depth);
            case Expression::Kind::logical_or:
                return connective(Test::Kind::logical_or, expression, depth);
            case Expression::Kind::logical_not:
                return connective(Test::Kind::logical_not, expression, depth);
            case Expression::Kind::condition_name:
                return condition_name(expression);
            case Expression::Kind::class_test:
                return class_test(expression);
            case Expression::Kind::comparison:
                return compared(expression);
            case Expression::Kind::is_first:
                return position(expression, Test::Kind::is_first);
            case Expression::Kind::is_last:
                return position(expression, Test::Kind::is_last);
        }
        return std::nullopt;
    }

  private:
    std::optional<Test> error(const Expression& expression, std::string message) {
        diagnostics_.error(expression.place, std::move(message));
        return std::nullopt;
    }

    std::optional<Test> connective(Test::Kind kind, const Expression& expression, int depth) {
        Test test;
        test.kind = kind;
        for (const Expression& each : expression.operands) {
            std::optional<Test> operand = resolve(each, depth + 1);
            if (!operand) return std::nullopt;
            test.operands.push_back(std::move(*operand));
        }
        if (test.operands.empty()) return error(expression, "the condition is empty");
        return test;
    }

    std::optional<Test> position(const Expression& expression, Test::Kind kind) {
        if (at_.parent != nullptr) {
            return error(expression, "FIRST and LAST tell records apart, not parts of records");
        }
        Test test;
        test.kind = kind;
        return test;
    }

    NameScope::Found find(const Expression& expression, const std::vector<std::string>& name) {
        NameScope::Found found = scope_.find(name, at_);
        if (found.ambiguous) {
            error(expression, qualified(name) + " is ambiguous; qualify it with OF and a group");
            return {};
        }
        if (found.node == nullptr) {
            error(expression,
                  "no item or condition name " + qualified(name) + " in this record description");
        }
        return found;
    }

    std::optional<Operand> item(const Expression& expression,
                                const std::vector<std::string>& name) {
        const NameScope::Found found = find(expression, name);
        if (found.node == nullptr) return std::nullopt;
        if (found.condition != nullptr) {
            error(expression, qualified(name) +
                                  " is a condition name; it stands alone, without "
                                  "a comparison");
            return std::nullopt;
        }
        return operand_of(*found.node, at_);
    }

    std::optional<Test> condition_name(const Expression& expression) {
        const NameScope::Found found = find(expression, expression.name);
        if (found.node == nullptr) return std::nullopt;
        if (found.condition == nullptr || found.condition->values.empty()) {
            return error(expression, qualified(expression.name) +
                                         " is not a condition name (level 88); compare it with a "
                                         "value");
        }
        return values_test(*found.condition, operand_of(*found.node, at_));
    }

    std::optional<Test> class_test(const Expression& expression) {
        std::optional<Operand> left = item(expression, expression.name);
        if (!left) return std::nullopt;
        Test test;
        test.kind = Test::Kind::class_test;
        test.class_tested = expression.class_tested;
        test.left = std::move(*left);
        return test;
    }

    std::optional<Test> compared(const Expression& expression) {
        std::optional<Operand> left = item(expression, expression.name);
        if (!left) return std::nullopt;
        if (expression.literal) {
            return comparison(*left, expression.relation, operand_of(*expression.literal));
        }
        std::optional<Operand> right = item(expression, expression.other);
        if (!right) return std::nullopt;
        return comparison(*left, expression.relation, *right);
    }

    const Node& at_;
    const NameScope& scope_;
    Diagnostics& diagnostics_;
};

const char* relation_text(Expression::Relation relation) {
    switch (relation) {
        case Expression::Relation::equal:
            return " = ";
        case Expression::Relation::not_equal:
            return " <> ";
        case Expression::Relation::less:
            return " < ";
        case Expression::Relation::less_equal:
            return " <= ";
        case Expression::Relation::greater:
            return " > ";
        case Expression::Relation::greater_equal:
            return " >= ";
    }
    return "";
}

std::string operand_text(const Operand& operand) {
    switch (operand.kind) {
        case Operand::Kind::text:
            return "\"" + operand.value + "\"";
        case Operand::Kind::hex:
            return "X\"" + operand.value + "\"";
        case Operand::Kind::all:
            return "ALL \"" + operand.value + "\"";
        default:
            return operand.value;
    }
}

std::string joined_text(const Test& test, const char* word) {
    std::string text;
    for (const Test& each : test.operands) {
        const bool bracket =
            each.kind == Test::Kind::logical_and || each.kind == Test::Kind::logical_or;
        if (!text.empty()) text += word;
        text += bracket ? "(" + test_text(each) + ")" : test_text(each);
    }
    return text;
}

}  // namespace

NameScope::NameScope(const std::vector<std::unique_ptr<Node>>& records) {
    for (const auto& record : records) {
        for_each(*record, [this](Node& node) {
            if (!node.source->name.empty()) {
                by_name_[node.source->name].push_back({&node, nullptr});
            }
            for (const ConditionName& condition : node.source->conditions) {
                by_name_[condition.name].push_back({&node, &condition});
            }
        });
    }
}

NameScope::Found NameScope::find(const std::vector<std::string>& name, const Node& from) const {
    const auto entries = name.empty() ? by_name_.end() : by_name_.find(name.front());
    if (entries == by_name_.end()) return {};
    std::vector<Entry> matching;
    for (const Entry& entry : entries->second) {
        // A condition name is qualified by its item first.
        const Node* around = entry.condition != nullptr ? entry.node : entry.node->parent;
        if (qualifies(around, name)) matching.push_back(entry);
    }
    for (const Node* scope = &from; scope != nullptr && matching.size() > 1;
         scope = scope->parent) {
        std::vector<Entry> near;
        std::copy_if(matching.begin(), matching.end(), std::back_inserter(near),
                     [scope](const Entry& entry) { return is_inside(*entry.node, *scope); });
        if (!near.empty()) return {near[0].node, near[0].condition, near.size() > 1};
    }
    if (matching.empty()) return {};
    return {matching[0].node, matching[0].condition, matching.size() > 1};
}

Operand operand_of(const Node& item, const Node& at) {
    Operand operand;
    operand.kind = Operand::Kind::item;
    operand.value = item_name(*item.source);
    operand.offset = static_cast<std::int32_t>(item.offset);
    operand.length = static_cast<std::int32_t>(item.size);
    operand.form = item.form;
    const std::vector<const Node*> mine = tables_of(item);
    const std::vector<const Node*> theirs = tables_of(at);
    const auto [last, ignored] =
        std::mismatch(mine.begin(), mine.end(), theirs.begin(), theirs.end());
    operand.tables = static_cast<int>(last - mine.begin());
    return operand;
}

std::optional<Test> resolve(const Expression& expression, const Node& at, const NameScope& scope,
                            Diagnostics& diagnostics) {
    return Resolver(at, scope, diagnostics).resolve(expression, 1);
}

std::string test_text(const Test& test) {
    switch (test.kind) {
        case Test::Kind::comparison:
            return operand_text(test.left) + relation_text(test.relation) +
                   operand_text(test.right);
        case Test::Kind::class_test:
            return operand_text(test.left) +
                   (test.class_tested == Expression::Class::numeric ? " NUMERIC" : " ALPHABETIC");
        case Test::Kind::logical_not:
            return test.operands.empty() ? "NOT" : "NOT (" + test_text(test.operands[0]) + ")";
        case Test::Kind::logical_and:
            return joined_text(test, " AND ");
        case Test::Kind::logical_or:
            return joined_text(test, " OR ");
        case Test::Kind::is_first:
            return "FIRST";
        case Test::Kind::is_last:
            return "LAST";
    }
    return {};
}

}  // namespace records
