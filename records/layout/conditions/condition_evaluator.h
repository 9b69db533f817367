// Conditions made ready to be tested on records.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "records/layout/model.h"
#include "records/numbers.h"
#include "records/position.h"

namespace records {

// A test with its literals converted, in the record's encoding. Testing allocates nothing.
class ConditionEvaluator {
  public:
    ConditionEvaluator(const Test& test, bool ebcdic);
    // `shifts[t]`: bytes by which an operand that shares t tables with the condition lies after
    // its first occurrence.
    bool holds(const std::uint8_t* record, const std::vector<std::int32_t>& shifts,
               RecordPosition position) const;

  private:
    // digits: of a number, with a text; above_all: the literal is larger than the item can be.
    enum class Kind {
        bytes,
        byte_equal,
        digits,
        above_all,
        numbers,
        is_class,
        all_of,
        any_of,
        none_of,
        is_first,
        is_last
    };
    struct Part {
        Kind kind = Kind::bytes;
        Expression::Relation relation = Expression::Relation::equal;
        Expression::Class class_tested = Expression::Class::numeric;
        Operand left;
        bool right_is_item = false;
        Operand right;
        std::string constant;  // bytes to compare with, in the record's encoding
        std::uint8_t pad = ' ';
        std::unique_ptr<Decimal> number;
        std::vector<Part> parts;
    };

    Part build(const Test& test) const;
    void build_comparison(const Test& test, Part& part) const;
    static bool holds(const Part& part, const std::uint8_t* record,
                      const std::vector<std::int32_t>& shifts, bool ebcdic,
                      RecordPosition position);

    bool ebcdic_;
    Part root_;
};

}  // namespace records
