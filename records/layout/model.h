// What a record description holds before it is flattened: each item once, at its first occurrence.
// The copybook compiler makes it, description files store it, and the module's structures are built
// from it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "records/data_item.h"
#include "records/field_types.h"

namespace records {

// Bounds that hold for every description, whatever it was made from.
constexpr std::int32_t MAX_RECORD_LENGTH = 256 * 1024 * 1024;
constexpr std::int32_t MAX_OCCURS = 32767;       // what occurs_max and subscripts can hold
constexpr std::int64_t MAX_ITEMS = 1'000'000;    // after flattening, 328 bytes each
constexpr int MAX_CONDITIONS = 998;              // 999 marks a group
constexpr int MAX_DEPTH = 64;                    // of groups, and of conditions as written
constexpr int MAX_TEST_DEPTH = 100;              // of conditions put together
constexpr std::size_t MAX_TEST_PARTS = 100'000;  // comparisons and connectives of one condition
constexpr int MAX_DIGITS_DESCRIBED = 127;        // what a descriptor's digits can hold

// What a field's bytes mean.
struct FieldForm {
    FieldType type = ALPHANUMERIC;
    int digits = 0;  // of the text, for numbers
    int scale = 0;   // of the text: 0 or negative
    int stored_digits = 0;
    int stored_scale = 0;
    std::uint8_t flags = 0;  // FieldFlag bits
    bool hex = false;        // written as hexadecimal text

    bool operator==(const FieldForm&) const = default;
};

// A side of a comparison.
struct Operand {
    enum class Kind { item, text, number, hex, figurative, all };
    Kind kind = Kind::text;
    std::string value;        // name of the item, or the literal as Literal::value spells it
    std::int32_t offset = 0;  // of the item, from here on: at its first occurrence
    std::int32_t length = 0;
    int tables = 0;  // so many leading tables of the condition hold the item as well
    FieldForm form;
};

// A condition over operands.
struct Test {
    enum class Kind {
        comparison,
        class_test,
        logical_and,
        logical_or,
        logical_not,
        is_first,  // of the file's records
        is_last
    };
    Kind kind = Kind::comparison;
    Expression::Relation relation = Expression::Relation::equal;
    Expression::Class class_tested = Expression::Class::numeric;
    Operand left;
    Operand right;               // of a comparison
    std::vector<Test> operands;  // of and, or, not
};

// One table that a condition lies in: the condition is tested for each occurrence on its own.
struct ConditionTable {
    std::int32_t occurs = 1;
    std::int32_t stride = 0;  // bytes from one occurrence to the next

    bool operator==(const ConditionTable&) const = default;
};

struct Condition {
    std::string text;
    std::vector<ConditionTable> tables;  // outermost first
    Test test;
};

struct Table {
    std::int32_t occurs = 1;  // 1 gives no dimension
    std::int32_t min = 1;     // with depending_on
    std::int32_t stride = 0;
    std::string depending_on;        // empty when the number of occurrences is fixed
    std::optional<Operand> counter;  // where records take the room of the entries in use only
};

struct ModelItem {
    std::string name;        // in XML; empty when the item gives no element
    std::string cobol_name;  // empty for FILLER
    int level = 0;           // as written
    std::int32_t offset = 0;
    std::int32_t length = 0;  // of one occurrence
    bool group = false;
    int condition = 0;  // of a field: number from 1 into Model::conditions, 0 for every record
    std::optional<Table> table;
    FieldForm form;  // of a field
    std::string picture;
    std::string usage;
    std::string redefines;
    std::vector<ModelItem> children;
};

// How the length of a record follows from the counter of an OCCURS DEPENDING ON table at its end.
struct LengthRule {
    int condition = 0;  // the rule is for records of which this condition holds; 0: for all
    Operand counter;
    std::int32_t table_offset = 0;
    std::int32_t stride = 0;
    std::int32_t min = 0;
    std::int32_t max = 0;
};

struct Model {
    std::string name;
    std::int32_t record_length = 0;
    bool decimal_comma = false;
    bool ebcdic = false;
    std::vector<Condition> conditions;
    std::vector<LengthRule> length_rules;
    std::vector<ModelItem> layouts;  // items of level 1; those without a name are not described
};

}  // namespace records
