// The syntax tree of a record description: what the copybook compiler's parser makes of data
// description entries and directives, and what the layout is computed from.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "records/diagnostics.h"

namespace records {

enum class Usage {
    display,
    binary,
    comp_1,
    comp_2,
    comp_3,
    comp_5,
    comp_6,
    comp_x,
    national,
    index,
    pointer,
    binary_char,
    binary_short,
    binary_long,
    binary_double,
    float_short,
    float_long,
    double_byte  // DISPLAY-1
};

// Whether items of this usage have a PICTURE, that is, whether their size follows from one.
constexpr bool takes_picture(Usage usage) {
    switch (usage) {
        case Usage::comp_1:
        case Usage::comp_2:
        case Usage::index:
        case Usage::pointer:
        case Usage::binary_char:
        case Usage::binary_short:
        case Usage::binary_long:
        case Usage::binary_double:
        case Usage::float_short:
        case Usage::float_long:
            return false;
        default:
            return true;
    }
}

enum class Category {
    numeric,
    alphabetic,
    alphanumeric,
    edited,
    national,
    national_edited,
    double_byte
};

// A PICTURE, analysed.
struct Picture {
    std::string text;  // as written, upper case
    Category category = Category::alphanumeric;
    bool is_signed = false;
    int digits = 0;            // digit positions stored (9 and, for edited items, digit places)
    int scale = 0;             // power of ten of the last stored digit: -2 for 9(5)V99, 3 for 99PPP
    char stored_point = '\0';  // of a number: the point or comma stored in it, as in S9(3).99
    int leading_p = 0;         // P positions before the digits (VPP99): scale counts them
    int length = 0;            // character positions in DISPLAY (without a separate sign)
    int national = 0;          // N positions, of `length`
    Place place;
};

struct Literal {
    enum class Kind { number, text, figurative, hex, all } kind = Kind::text;
    // number: digits with at most a minus sign and a '.' (also where the source has a comma);
    // text: unquoted; figurative: ZERO SPACE HIGH-VALUE LOW-VALUE QUOTE NULL, whatever form was
    // written; hex: pairs of upper-case hexadecimal digits; all: the bytes that are repeated.
    std::string value;
    Place place;
};

struct LiteralRange {
    Literal low;
    std::optional<Literal> high;  // THRU
};

struct ConditionName {  // level 88
    std::string name;
    std::vector<LiteralRange> values;
    Place place;
};

struct Occurs {
    int min = 0;
    int max = 0;
    std::string depending_on;                  // empty when fixed
    std::vector<std::string> depending_on_of;  // its qualifiers (OF, IN), outward
    Place place;
};

// A condition of a directive, over data names and condition names.
struct Expression {
    enum class Kind {
        comparison,
        condition_name,
        class_test,
        logical_and,
        logical_or,
        logical_not,
        is_first,  // of the file's records
        is_last
    };
    enum class Relation { equal, not_equal, less, less_equal, greater, greater_equal };
    enum class Class { numeric, alphabetic };
    Kind kind = Kind::comparison;
    Relation relation = Relation::equal;
    Class class_tested = Class::numeric;
    std::vector<std::string>
        name;  // left side or condition name, qualified: name, OF/IN names outward
    std::optional<Literal> literal;    // right side, or:
    std::vector<std::string> other;    // right side data name
    std::vector<Expression> operands;  // of and, or, not
    Place place;
};

struct DataItem {
    int level = 0;     // as written: 1-49, 66, 77
    std::string name;  // upper case; empty for FILLER and unnamed items
    Place place;
    std::optional<Picture> picture;
    std::optional<Usage> usage;        // as written here; inherited in the layout
    std::optional<bool> sign_leading;  // SIGN clause written here: leading or trailing
    bool sign_separate = false;
    std::optional<Occurs> occurs;
    std::string redefines;  // empty when none
    Place redefines_place;
    bool synchronized = false;
    bool justified = false;
    bool blank_when_zero = false;
    std::optional<bool> binary_unsigned;  // BINARY-x ... UNSIGNED / SIGNED
    std::vector<ConditionName> conditions;
    std::vector<std::unique_ptr<DataItem>> children;

    // From directives:
    std::optional<Expression> when;  // the layout or variant that this item opens holds when ...
    std::string xml_name;            // name to use in XML instead of one made from `name`
    bool hex = false;                // binary data, written as hexadecimal
    bool hidden = false;             // no element for this item
};

// All 01 and 77 level items of one FD, one copybook or one record, in order.
struct RecordSource {
    std::string name;  // FD name, or empty
    std::string file;  // name of the file it came from
    std::vector<std::unique_ptr<DataItem>> records;
    int record_contains = 0;  // largest number of the FD's RECORD clause, bytes; 0 when it has none
    bool decimal_point_is_comma = false;
    char currency = '$';
};

}  // namespace records
