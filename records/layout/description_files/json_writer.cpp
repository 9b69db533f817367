#include <nlohmann/json.hpp>

#include "records/description.h"
#include "records/layout/description_data.h"
#include "records/layout/description_files/json_words.h"

namespace records {
namespace {

using Json = nlohmann::ordered_json;

// Bytes that are not UTF-8 cannot stand in JSON; names that hold them are for show only.
std::string dumped(const Json& value) {
    return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

void set_unless_empty(Json& object, const char* key, const std::string& text) {
    if (!text.empty()) object[key] = text;
}

void set_form(Json& object, const FieldForm& form) {
    object["type"] = json::word_of(json::TYPES, form.type);
    if (is_numeric_type(form.type)) {
        object["digits"] = form.digits;
        if (form.scale != 0) object["scale"] = form.scale;
        if (form.stored_digits != form.digits) object["stored_digits"] = form.stored_digits;
        if (form.stored_scale != form.scale) object["stored_scale"] = form.stored_scale;
    }
    Json flags = Json::array();
    for (const auto& [word, flag] : json::FLAGS) {
        if ((form.flags & flag) != 0) flags.push_back(word);
    }
    if (!flags.empty()) object["flags"] = flags;
    if (form.hex) object["hex"] = true;
}

Json operand_json(const Operand& operand) {
    Json object = Json::object();
    if (operand.kind != Operand::Kind::item) {
        object[std::string(json::word_of(json::LITERALS, operand.kind))] = operand.value;
        return object;
    }
    object["item"] = operand.value;
    object["offset"] = operand.offset;
    object["length"] = operand.length;
    if (operand.tables != 0) object["tables"] = operand.tables;
    set_form(object, operand.form);
    return object;
}

Json test_json(const Test& test) {
    Json object = Json::object();
    switch (test.kind) {
        case Test::Kind::comparison:
            object["compare"] = json::word_of(json::RELATIONS, test.relation);
            object["left"] = operand_json(test.left);
            object["right"] = operand_json(test.right);
            return object;
        case Test::Kind::class_test:
            object["class"] = json::word_of(json::CLASSES, test.class_tested);
            object["left"] = operand_json(test.left);
            return object;
        case Test::Kind::logical_not:
            object["not"] = test_json(test.operands.at(0));
            return object;
        case Test::Kind::is_first:
        case Test::Kind::is_last:
            object["position"] = json::word_of(json::POSITIONS, test.kind);
            return object;
        default: {
            Json operands = Json::array();
            for (const Test& each : test.operands) operands.push_back(test_json(each));
            object[std::string(json::word_of(json::CONNECTIVES, test.kind))] = operands;
            return object;
        }
    }
}

Json condition_json(const Condition& condition) {
    Json object = Json::object();
    object["text"] = condition.text;
    if (!condition.tables.empty()) {
        Json tables = Json::array();
        for (const ConditionTable& table : condition.tables) {
            tables.push_back({{"occurs", table.occurs}, {"stride", table.stride}});
        }
        object["tables"] = tables;
    }
    object["test"] = test_json(condition.test);
    return object;
}

Json length_rule_json(const LengthRule& rule) {
    Json object = Json::object();
    if (rule.condition != 0) object["condition"] = rule.condition;
    object["counter"] = operand_json(rule.counter);
    object["table_offset"] = rule.table_offset;
    object["stride"] = rule.stride;
    object["min"] = rule.min;
    object["max"] = rule.max;
    return object;
}

// All keys of an item but its subordinates.
Json item_json(const ModelItem& item) {
    Json object = Json::object();
    set_unless_empty(object, "name", item.name);
    set_unless_empty(object, "cobol", item.cobol_name);
    object["level"] = item.level;
    object["offset"] = item.offset;
    object["length"] = item.length;
    if (item.table) {
        Json table{{"count", item.table->occurs}, {"stride", item.table->stride}};
        if (!item.table->depending_on.empty()) {
            table["min"] = item.table->min;
            table["depending_on"] = item.table->depending_on;
        }
        if (item.table->counter) table["counter"] = operand_json(*item.table->counter);
        object["occurs"] = table;
    }
    set_unless_empty(object, "redefines", item.redefines);
    set_unless_empty(object, "picture", item.picture);
    set_unless_empty(object, "usage", item.usage);
    if (!item.group) set_form(object, item.form);
    if (item.condition != 0) object["condition"] = item.condition;
    return object;
}

// One item to a line, so that descriptions can be compared line by line.
void write_item(const ModelItem& item, std::size_t indent, std::string& out) {
    out.append(indent, ' ');
    std::string line = dumped(item_json(item));
    if (!item.group) {
        out += line;
        return;
    }
    line.back() = ',';
    out += line + " \"items\": [\n";
    for (const ModelItem& child : item.children) {
        write_item(child, indent + 2, out);
        out += &child == &item.children.back() ? "\n" : ",\n";
    }
    out.append(indent, ' ');
    out += "]}";
}

template <typename Element, typename ToJson>
void write_lines(const char* key, const std::vector<Element>& elements, const ToJson& to_json,
                 std::string& out) {
    if (elements.empty()) return;
    out += std::string("  \"") + key + "\": [\n";
    for (const Element& element : elements) {
        out += "    " + dumped(to_json(element));
        out += &element == &elements.back() ? "\n" : ",\n";
    }
    out += "  ],\n";
}

}  // namespace

std::string description_to_json(const Description& description) {
    const Model& model = description.data().model;
    std::string out = "{\n";
    const auto line = [&out](const char* key, const Json& value) {
        out += std::string("  \"") + key + "\": " + dumped(value) + ",\n";
    };
    line("format", json::FORMAT);
    line("version", json::VERSION);
    line("name", model.name);
    line("record_length", model.record_length);
    if (model.decimal_comma) line("decimal_comma", true);
    if (model.ebcdic) line("encoding", "ebcdic");
    write_lines("conditions", model.conditions, condition_json, out);
    write_lines("length_rules", model.length_rules, length_rule_json, out);
    out += "  \"records\": [\n";
    for (const ModelItem& layout : model.layouts) {
        write_item(layout, 4, out);
        out += &layout == &model.layouts.back() ? "\n" : ",\n";
    }
    out += "  ]\n}\n";
    return out;
}

}  // namespace records
