#include "records/layout/conditions/condition_check.h"

#include <algorithm>
#include <vector>

#include "records/layout/conditions/comparison.h"

namespace records {
namespace {

// What an operand's place must fit: the record, in every table that the condition lies in.
struct Bounds {
    std::int64_t record_length;
    std::vector<std::int64_t> last_shift;  // of the last occurrence, by number of tables
};

std::string item_problem(const Operand& item, const Bounds& bounds) {
    if (item.kind != Operand::Kind::item) return "the left side must be an item";
    if (item.tables < 0 || static_cast<std::size_t>(item.tables) >= bounds.last_shift.size()) {
        return item.value + " is in more tables than its condition";
    }
    const std::int64_t shift = bounds.last_shift[static_cast<std::size_t>(item.tables)];
    if (item.offset < 0 || item.length <= 0 ||
        item.offset + shift + item.length > bounds.record_length) {
        return item.value + " does not lie in the record";
    }
    return {};
}

std::string comparison_problem(const Test& test, const Bounds& bounds) {
    const Operand& right = test.right;
    switch (right.kind) {
        case Operand::Kind::item:
            return item_problem(right, bounds);
        case Operand::Kind::number:
            return is_number(right.value) ? "" : "\"" + right.value + "\" is not a number";
        case Operand::Kind::figurative:
            return figurative_byte(right.value, false) >= 0
                       ? ""
                       : "\"" + right.value + "\" is not a figurative constant";
        case Operand::Kind::hex: {
            const bool pairs = right.value.size() % 2 == 0 && !right.value.empty() &&
                               std::all_of(right.value.begin(), right.value.end(),
                                           [](char c) { return hex_value(c) >= 0; });
            return pairs ? "" : "X\"" + right.value + "\" must be pairs of hexadecimal digits";
        }
        case Operand::Kind::all:
            return right.value.empty() ? "ALL needs a text of at least one character" : "";
        case Operand::Kind::text:
            if (is_numeric(test.left) && !is_display(test.left) && !is_number(right.value)) {
                return "\"" + right.value + "\" cannot be compared with the number " +
                       test.left.value;
            }
            return {};
    }
    return {};
}

std::string problem_of(const Test& test, const Bounds& bounds, int depth, std::size_t& parts) {
    if (depth > MAX_TEST_DEPTH || ++parts > MAX_TEST_PARTS) {
        return "the condition is nested too deep or has too many parts";
    }
    if (test.kind == Test::Kind::comparison || test.kind == Test::Kind::class_test) {
        std::string left = item_problem(test.left, bounds);
        if (!left.empty() || test.kind == Test::Kind::class_test) return left;
        return comparison_problem(test, bounds);
    }
    if (test.kind == Test::Kind::is_first || test.kind == Test::Kind::is_last) return {};
    // `and` of nothing holds by itself; only a whole condition may be that.
    if (test.operands.empty() && (depth > 1 || test.kind != Test::Kind::logical_and)) {
        return "the condition has an empty part";
    }
    if (test.kind == Test::Kind::logical_not && test.operands.size() != 1) {
        return "NOT takes one condition";
    }
    for (const Test& each : test.operands) {
        std::string problem = problem_of(each, bounds, depth + 1, parts);
        if (!problem.empty()) return problem;
    }
    return {};
}

}  // namespace

std::string condition_problem(const Condition& condition, std::int32_t record_length) {
    Bounds bounds{record_length, {0}};
    for (const ConditionTable& table : condition.tables) {
        bounds.last_shift.push_back(bounds.last_shift.back() +
                                    static_cast<std::int64_t>(table.occurs - 1) * table.stride);
    }
    std::size_t parts = 0;
    return problem_of(condition.test, bounds, 1, parts);
}

}  // namespace records
