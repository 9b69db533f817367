#include "tests/records/tree_dump.h"

namespace records {

namespace {

constexpr const char* USAGES[] = {
    "DISPLAY",      "BINARY",      "COMP-1",        "COMP-2",      "COMP-3",     "COMP-5",
    "COMP-6",       "COMP-X",      "NATIONAL",      "INDEX",       "POINTER",    "BINARY-CHAR",
    "BINARY-SHORT", "BINARY-LONG", "BINARY-DOUBLE", "FLOAT-SHORT", "FLOAT-LONG", "DISPLAY-1"};
constexpr const char* CATEGORIES[] = {"num", "alpha",      "alnum",      "edited",
                                      "nat", "nat-edited", "double-byte"};
constexpr const char* RELATIONS[] = {"=", "<>", "<", "<=", ">", ">="};

std::string dump_literal(const Literal& literal) {
    switch (literal.kind) {
        case Literal::Kind::text:
            return "'" + literal.value + "'";
        case Literal::Kind::hex:
            return "x" + literal.value;
        case Literal::Kind::all:
            return "ALL '" + literal.value + "'";
        case Literal::Kind::number:
        case Literal::Kind::figurative:
            break;
    }
    return literal.value;
}

std::string dump_name(const std::vector<std::string>& name) {
    std::string out;
    for (const std::string& part : name) out += (out.empty() ? "" : " OF ") + part;
    return out;
}

std::string dump_picture(const Picture& picture) {
    std::string out = " PIC " + picture.text + " [";
    out += CATEGORIES[static_cast<int>(picture.category)];
    if (picture.is_signed) out += " signed";
    if (picture.digits > 0) out += " digits " + std::to_string(picture.digits);
    if (picture.scale != 0) out += " scale " + std::to_string(picture.scale);
    if (picture.stored_point != '\0') out += std::string(" point ") + picture.stored_point;
    if (picture.leading_p != 0) out += " p " + std::to_string(picture.leading_p);
    return out + " length " + std::to_string(picture.length) + "]";
}

std::string dump_occurs(const Occurs& occurs) {
    std::string out = " OCCURS ";
    if (occurs.min != occurs.max) out += std::to_string(occurs.min) + " TO ";
    out += std::to_string(occurs.max);
    if (occurs.depending_on.empty()) return out;
    out += " ON " + occurs.depending_on;
    for (const std::string& group : occurs.depending_on_of) out += " OF " + group;
    return out;
}

std::string dump_flags(const DataItem& item) {
    std::string out;
    if (item.sign_leading) out += *item.sign_leading ? " LEADING" : " TRAILING";
    if (item.sign_separate) out += " SEPARATE";
    if (item.synchronized) out += " SYNC";
    if (item.justified) out += " JUST";
    if (item.blank_when_zero) out += " BLANK-ZERO";
    if (item.binary_unsigned) out += *item.binary_unsigned ? " UNSIGNED" : " SIGNED";
    if (!item.xml_name.empty()) out += " name=" + item.xml_name;
    if (item.hex) out += " hex";
    if (item.hidden) out += " hide";
    return out;
}

std::string dump_condition_name(const ConditionName& condition) {
    std::string out = "88 " + condition.name;
    for (const LiteralRange& range : condition.values) {
        out += " " + dump_literal(range.low);
        if (range.high) out += ".." + dump_literal(*range.high);
    }
    return out + "\n";
}

void dump_item(const DataItem& item, const std::string& indent, std::string& out) {
    out += indent + std::to_string(item.level) + " " + (item.name.empty() ? "-" : item.name);
    if (!item.redefines.empty()) out += " REDEFINES " + item.redefines;
    if (item.picture) out += dump_picture(*item.picture);
    if (item.usage) out += std::string(" ") + USAGES[static_cast<int>(*item.usage)];
    if (item.occurs) out += dump_occurs(*item.occurs);
    out += dump_flags(item);
    if (item.when) out += " when " + dump_condition(*item.when);
    out += "\n";
    for (const ConditionName& condition : item.conditions) {
        out += indent + "  " + dump_condition_name(condition);
    }
    for (const auto& child : item.children) dump_item(*child, indent + "  ", out);
}

}  // namespace

std::string dump_condition(const Expression& expression) {
    switch (expression.kind) {
        case Expression::Kind::comparison:
            return "(" + dump_name(expression.name) + " " +
                   RELATIONS[static_cast<int>(expression.relation)] + " " +
                   (expression.literal ? dump_literal(*expression.literal)
                                       : dump_name(expression.other)) +
                   ")";
        case Expression::Kind::condition_name:
            return dump_name(expression.name);
        case Expression::Kind::class_test:
            return "(" + dump_name(expression.name) + " is " +
                   (expression.class_tested == Expression::Class::numeric ? "numeric)"
                                                                          : "alphabetic)");
        case Expression::Kind::logical_not:
            return "not " + dump_condition(expression.operands.front());
        case Expression::Kind::is_first:
            return "first";
        case Expression::Kind::is_last:
            return "last";
        case Expression::Kind::logical_and:
        case Expression::Kind::logical_or:
            break;
    }
    std::string out = expression.kind == Expression::Kind::logical_and ? "(and" : "(or";
    for (const Expression& operand : expression.operands) out += " " + dump_condition(operand);
    return out + ")";
}

std::string dump_tree(const RecordSource& source) {
    std::string out;
    if (!source.name.empty()) out += "FD " + source.name + "\n";
    if (source.decimal_point_is_comma) out += "DECIMAL-POINT IS COMMA\n";
    if (source.currency != '$') out += std::string("CURRENCY ") + source.currency + "\n";
    for (const auto& record : source.records) dump_item(*record, "", out);
    return out;
}

}  // namespace records
