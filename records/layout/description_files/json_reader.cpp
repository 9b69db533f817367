#include <algorithm>
#include <set>

#include "records/layout/conditions/condition_check.h"
#include "records/layout/description_data.h"
#include "records/layout/description_files/json_keys.h"
#include "records/layout/description_files/json_words.h"
#include "records/layout/names.h"

namespace records {
namespace {

using json::Key;

constexpr std::int64_t MAX_SCALE = 127;
constexpr std::size_t MAX_MODEL_ITEMS = 1'000'000;

// The tables around an item, with the bytes by which the last occurrence lies after the first.
struct Surroundings {
    std::vector<ConditionTable> tables;
    std::int64_t last_shift = 0;
    int depth = 1;
};

class Reader {
  public:
    explicit Reader(const LayoutOptions& options) : options_(options) {}

    Model read(const Key& top) {
        if (!top.is_object_of({"format", "version", "name", "record_length", "decimal_comma",
                               "encoding", "conditions", "length_rules", "records"})) {
            return {};
        }
        if (top.text("format") != json::FORMAT) {
            top.member("format").error("must be \"" + std::string(json::FORMAT) + "\"");
            return {};
        }
        top.integer("version", json::VERSION, json::VERSION);
        model_.record_length =
            static_cast<std::int32_t>(top.integer("record_length", 1, MAX_RECORD_LENGTH));
        model_.decimal_comma = top.flag("decimal_comma");
        read_encoding(top);
        read_conditions(top);
        read_records(top);
        read_length_rules(top);
        read_name(top);
        return std::move(model_);
    }

  private:
    void read_encoding(const Key& top) {
        const std::string encoding = top.optional_text("encoding");
        if (!encoding.empty() && encoding != "ebcdic" && encoding != "ascii") {
            top.member("encoding").error("must be \"ascii\" or \"ebcdic\"");
        }
        model_.ebcdic = encoding == "ebcdic" || options_.encoding == RecordEncoding::ebcdic;
    }

    void read_name(const Key& top) {
        const Key key = top.member("name");
        std::string name = key.as_text();
        if (!options_.name.empty()) name = xml_name(options_.name, options_.name_case);
        name = as_read(name, options_.name_case);
        if (!is_xml_name(name) || name.size() > MAX_DESCRIPTION_NAME) {
            key.error("must be a name of letters, digits, - _ . and at most " +
                      std::to_string(MAX_DESCRIPTION_NAME) + " characters");
        } else if (groups_.count(name) > 0 || fields_.count(name) > 0) {
            key.error("is also the name of an item; the document element needs its own");
        }
        model_.name = name;
    }

    // --- conditions

    void read_conditions(const Key& top) {
        if (!top.has("conditions")) return;
        const Key list = top.member("conditions");
        if (!list.is_array(0)) return;
        if (list.size() > static_cast<std::size_t>(MAX_CONDITIONS)) {
            list.error("must have at most " + std::to_string(MAX_CONDITIONS) + " elements");
            return;
        }
        for (std::size_t i = 0; i < list.size(); ++i) {
            model_.conditions.push_back(read_condition(list.element(i)));
        }
    }

    Condition read_condition(const Key& key) {
        Condition condition;
        if (!key.is_object_of({"text", "tables", "test"})) return condition;
        condition.text = key.optional_text("text");
        if (key.has("tables") && key.member("tables").is_array(0)) {
            const Key tables = key.member("tables");
            if (tables.size() > XFD_MAX_DIMENSIONS) {
                tables.error("must have at most " + std::to_string(XFD_MAX_DIMENSIONS) +
                             " elements");
                return condition;
            }
            for (std::size_t i = 0; i < tables.size(); ++i) {
                condition.tables.push_back(read_condition_table(tables.element(i)));
            }
        }
        bool complete = true;
        condition.test = read_test(key.member("test"), 1, complete);
        if (!complete) return condition;
        const std::string problem = condition_problem(condition, model_.record_length);
        if (!problem.empty()) key.member("test").error("is not usable: " + problem);
        return condition;
    }

    ConditionTable read_condition_table(const Key& key) {
        ConditionTable table;
        if (!key.is_object_of({"occurs", "stride"})) return table;
        table.occurs = static_cast<std::int32_t>(key.integer("occurs", 2, MAX_OCCURS));
        table.stride = static_cast<std::int32_t>(key.integer("stride", 1, model_.record_length));
        return table;
    }

    Test read_test(const Key& key, int depth, bool& complete) {
        Test test;
        const bool known =
            key.is_object_of({"compare", "class", "left", "right", "and", "or", "not", "position"});
        if (!known || depth > MAX_TEST_DEPTH) {
            if (known) key.error("is nested too deep");
            complete = false;
            return test;
        }
        if (key.has("not")) {
            test.kind = Test::Kind::logical_not;
            test.operands.push_back(read_test(key.member("not"), depth + 1, complete));
            return test;
        }
        if (key.has("position")) {
            test.kind =
                word(key.member("position"), json::POSITIONS, Test::Kind::is_first, complete);
            return test;
        }
        for (const auto& [word, kind] : json::CONNECTIVES) {
            if (key.has(word.data()))
                return read_connective(key.member(word.data()), kind, depth, complete);
        }
        return read_comparison(key, complete);
    }

    Test read_connective(const Key& list, Test::Kind kind, int depth, bool& complete) {
        Test test;
        test.kind = kind;
        // `and` of nothing holds by itself; whether it may stand here is checked later.
        if (!list.is_array(kind == Test::Kind::logical_and ? 0 : 1)) complete = false;
        for (std::size_t i = 0; complete && i < list.size(); ++i) {
            test.operands.push_back(read_test(list.element(i), depth + 1, complete));
        }
        return test;
    }

    Test read_comparison(const Key& key, bool& complete) {
        Test test;
        test.left = read_operand(key.member("left"), complete);
        if (key.has("class")) {
            test.kind = Test::Kind::class_test;
            test.class_tested =
                word(key.member("class"), json::CLASSES, Expression::Class::numeric, complete);
            return test;
        }
        test.relation =
            word(key.member("compare"), json::RELATIONS, Expression::Relation::equal, complete);
        test.right = read_operand(key.member("right"), complete);
        return test;
    }

    Operand read_operand(const Key& key, bool& complete) {
        Operand operand;
        if (!key.is_object_of({"item", "offset", "length", "tables", "type", "digits", "scale",
                               "stored_digits", "stored_scale", "flags", "hex", "text", "number",
                               "figurative", "all"})) {
            complete = false;
            return operand;
        }
        if (!key.has("item")) return read_literal(key, complete);
        operand.kind = Operand::Kind::item;
        operand.value = key.text("item");
        operand.offset = static_cast<std::int32_t>(key.integer("offset", 0, model_.record_length));
        operand.length = static_cast<std::int32_t>(key.integer("length", 1, model_.record_length));
        operand.tables = static_cast<int>(key.integer("tables", 0, XFD_MAX_DIMENSIONS, 0));
        operand.form = read_form(key, operand.length);
        return operand;
    }

    Operand read_literal(const Key& key, bool& complete) {
        Operand operand;
        for (const auto& [word, kind] : json::LITERALS) {
            if (!key.has(word.data())) continue;
            operand.kind = kind;
            operand.value = key.text(word.data());
            return operand;
        }
        key.error("must have one of the keys item, text, number, hex, figurative, all");
        complete = false;
        return operand;
    }

    template <typename Value, std::size_t size>
    Value word(const Key& key, const json::Words<Value, size>& words, Value fallback,
               bool& complete) {
        const std::string text = key.as_text();
        if (const std::optional<Value> value = json::meaning_of(words, text)) return *value;
        std::string allowed;
        for (const auto& [known, ignored] : words) {
            allowed += (allowed.empty() ? "" : ", ") + std::string(known);
        }
        key.error("must be one of: " + allowed);
        complete = false;
        return fallback;
    }

    // --- fields

    FieldForm read_form(const Key& key, std::int32_t length) {
        FieldForm form;
        bool ignored = true;
        form.type = word(key.member("type"), json::TYPES, ALPHANUMERIC, ignored);
        form.flags = read_flags(key);
        form.hex = key.flag("hex");
        if (!is_numeric_type(form.type)) return form;
        form.digits = static_cast<int>(key.integer("digits", 1, MAX_DIGITS_DESCRIBED));
        form.scale = static_cast<int>(key.integer("scale", -MAX_DIGITS_DESCRIBED, 0, 0));
        form.stored_digits =
            static_cast<int>(key.integer("stored_digits", 0, MAX_DIGITS_DESCRIBED, form.digits));
        form.stored_scale =
            static_cast<int>(key.integer("stored_scale", -MAX_SCALE, MAX_SCALE, form.scale));
        if (-form.scale > form.digits) {
            key.member("scale").error("must not ask for more decimals than there are digits");
        }
        check_length(key, form.type, length);
        add_encoding(form);
        return form;
    }

    void check_length(const Key& key, FieldType type, std::int32_t length) {
        if (length == 0) key.member("length").error("must be at least 1 for this type");
        const bool binary = type >= BINARY_SIGNED && type <= NATIVE_UNSIGNED;
        if (binary && length > 8) key.member("length").error("must be at most 8 for this type");
        const bool is_float = type == FLOAT_NATIVE || type == FLOAT_HEX;
        if (is_float && length != 4 && length != 8) {
            key.member("length").error("must be 4 or 8 for this type");
        }
    }

    // A description made for ASCII also serves for records in EBCDIC, when asked for.
    void add_encoding(FieldForm& form) const {
        if (form.type < DISPLAY_UNSIGNED || form.type > DISPLAY_SIGN_LEADING_SEPARATE) return;
        if (model_.ebcdic) form.flags |= FIELD_EBCDIC_TEXT;
        if (options_.ebcdic_sign) form.flags |= FIELD_EBCDIC_SIGN;
    }

    std::uint8_t read_flags(const Key& key) {
        std::uint8_t flags = 0;
        if (!key.has("flags")) return flags;
        const Key list = key.member("flags");
        if (!list.is_array(0)) return flags;
        bool complete = true;
        for (std::size_t i = 0; complete && i < list.size(); ++i) {
            flags = static_cast<std::uint8_t>(
                flags | word(list.element(i), json::FLAGS, FIELD_TRUNCATE, complete));
        }
        return flags;
    }

    // --- items

    void read_records(const Key& top) {
        const Key list = top.member("records");
        if (!list.is_array(1)) return;
        std::set<std::string> siblings;
        bool described = false;
        for (std::size_t i = 0; i < list.size(); ++i) {
            const Key key = list.element(i);
            model_.layouts.push_back(read_item(key, {}, siblings));
            const ModelItem& record = model_.layouts.back();
            if (!record.group) key.error("must be a group: a record needs \"items\"");
            if (record.table) key.member("occurs").error("is not allowed for a record");
            described = described || !record.name.empty();
        }
        if (!described) list.error("must have an element with a name");
    }

    ModelItem read_item(const Key& key, const Surroundings& around,
                        std::set<std::string>& siblings) {
        ModelItem item;
        if (++items_ > MAX_MODEL_ITEMS || around.depth > MAX_DEPTH) {
            if (items_ > MAX_MODEL_ITEMS) {
                if (items_ == MAX_MODEL_ITEMS + 1) key.error("is one item too many");
            } else {
                key.error("is nested more than " + std::to_string(MAX_DEPTH) + " deep");
            }
            return item;
        }
        if (!key.is_object_of({"name", "cobol", "level", "offset", "length", "occurs", "redefines",
                               "picture", "usage", "type", "digits", "scale", "stored_digits",
                               "stored_scale", "flags", "hex", "condition", "items"})) {
            return item;
        }
        item.cobol_name = key.optional_text("cobol");
        item.level = static_cast<int>(key.integer("level", 1, 99, 1));
        item.redefines = key.optional_text("redefines");
        item.picture = key.optional_text("picture");
        item.usage = key.optional_text("usage");
        item.group = key.has("items");
        item.condition = static_cast<int>(
            key.integer("condition", 0, static_cast<std::int64_t>(model_.conditions.size()), 0));
        Surroundings inside = around;
        ++inside.depth;
        read_table(key, item, inside);
        read_place(key, item, inside);
        read_item_name(key, item, siblings);
        if (!item.group) {
            item.form = read_form(key, item.length);
            check_condition(key, item, inside);
        } else {
            read_children(key, item, inside, siblings);
        }
        return item;
    }

    void read_table(const Key& key, ModelItem& item, Surroundings& inside) {
        if (!key.has("occurs")) return;
        const Key occurs = key.member("occurs");
        if (!occurs.is_object_of({"count", "stride", "min", "depending_on", "counter"})) return;
        Table table;
        table.occurs = static_cast<std::int32_t>(occurs.integer("count", 1, MAX_OCCURS));
        table.stride = static_cast<std::int32_t>(occurs.integer("stride", 1, model_.record_length));
        table.min = static_cast<std::int32_t>(occurs.integer("min", 0, table.occurs, table.occurs));
        table.depending_on = occurs.optional_text("depending_on");
        if (occurs.has("counter")) table.counter = read_counter(occurs, inside);
        if (table.occurs > 1) {
            inside.tables.push_back({table.occurs, table.stride});
            inside.last_shift += static_cast<std::int64_t>(table.occurs - 1) * table.stride;
        }
        item.table = table;
    }

    // Where the table slides. The counter may lie in tables around.
    Operand read_counter(const Key& occurs, const Surroundings& around) {
        bool complete = true;
        Operand counter = read_operand(occurs.member("counter"), complete);
        std::int64_t end = std::int64_t{counter.offset} + counter.length;
        const auto tables = static_cast<std::size_t>(counter.tables);
        for (std::size_t i = 0; i < std::min(tables, around.tables.size()); ++i) {
            end += static_cast<std::int64_t>(around.tables[i].occurs - 1) * around.tables[i].stride;
        }
        if (!complete || counter.kind != Operand::Kind::item || tables > around.tables.size() ||
            end > model_.record_length || !is_numeric_type(counter.form.type)) {
            occurs.member("counter").error("must be a number within the record");
        }
        return counter;
    }

    void read_place(const Key& key, ModelItem& item, const Surroundings& inside) {
        item.offset = static_cast<std::int32_t>(key.integer("offset", 0, model_.record_length));
        // A field of no bytes marks the records of its layout.
        const bool may_be_empty = !item.group && key.has("condition");
        item.length = static_cast<std::int32_t>(
            key.integer("length", may_be_empty ? 0 : 1, model_.record_length));
        const std::int64_t end = inside.last_shift + item.offset + item.length;
        if (end <= model_.record_length) return;
        key.member("offset").error("and length end at byte " + std::to_string(end) +
                                   " (last occurrence), past the record's " +
                                   std::to_string(model_.record_length));
    }

    void read_item_name(const Key& key, ModelItem& item, std::set<std::string>& siblings) {
        if (!key.has("name")) return;
        const Key name_key = key.member("name");
        item.name = as_read(name_key.as_text(), options_.name_case);
        if (!is_xml_name(item.name) || item.name.size() > MAX_ITEM_NAME) {
            name_key.error(
                "must be a name of letters, digits, - _ . (a letter or _ first, not "
                "xml...) and at most " +
                std::to_string(MAX_ITEM_NAME) + " characters");
            return;
        }
        const bool clash = item.group ? groups_.count(item.name) + fields_.count(item.name) > 0
                                      : groups_.count(item.name) > 0;
        if (clash || !siblings.insert(item.name).second) {
            name_key.error(
                "is used already; groups need names of their own, and fields beside "
                "each other different ones");
        }
        (item.group ? groups_ : fields_).insert(item.name);
    }

    void read_children(const Key& key, ModelItem& item, const Surroundings& inside,
                       std::set<std::string>& siblings) {
        const Key list = key.member("items");
        if (!list.is_array(1)) return;
        const bool named = !item.name.empty();
        const std::size_t before = named_fields_;
        std::set<std::string> own;
        for (std::size_t i = 0; i < list.size(); ++i) {
            item.children.push_back(read_item(list.element(i), inside, named ? own : siblings));
        }
        const bool gives_elements = named_fields_ > before;
        if (named && !gives_elements) {
            list.error("must hold a field with a name, since the group has one");
        }
        const bool unnamed_root = around_is_top(inside) && !named && gives_elements;
        const bool unnamed_table = !named && gives_elements && item.table && item.table->occurs > 1;
        if (unnamed_root || unnamed_table) {
            key.member("name").error("must be given: the items of this group have names");
        }
    }

    static bool around_is_top(const Surroundings& inside) { return inside.depth == 2; }

    void check_condition(const Key& key, const ModelItem& item, const Surroundings& inside) {
        if (!item.name.empty()) ++named_fields_;
        if (item.condition == 0) return;
        const auto index = static_cast<std::size_t>(item.condition - 1);
        const std::vector<ConditionTable>& tables = model_.conditions[index].tables;
        const bool matches = tables.size() <= inside.tables.size() &&
                             std::equal(tables.begin(), tables.end(), inside.tables.begin());
        if (!matches) {
            key.member("condition").error("names a condition in other tables");
        }
    }

    // --- lengths

    void read_length_rules(const Key& top) {
        if (!top.has("length_rules")) return;
        const Key list = top.member("length_rules");
        if (!list.is_array(0)) return;
        if (list.size() > static_cast<std::size_t>(MAX_CONDITIONS)) {
            list.error("must have at most " + std::to_string(MAX_CONDITIONS) + " elements");
            return;
        }
        for (std::size_t i = 0; i < list.size(); ++i) read_length_rule(list.element(i));
    }

    void read_length_rule(const Key& key) {
        if (!key.is_object_of({"condition", "counter", "table_offset", "stride", "min", "max"})) {
            return;
        }
        LengthRule rule;
        bool complete = true;
        rule.counter = read_operand(key.member("counter"), complete);
        const Operand& counter = rule.counter;
        if (!complete || counter.kind != Operand::Kind::item || counter.tables != 0 ||
            counter.length > model_.record_length - counter.offset ||
            !is_numeric_type(counter.form.type)) {
            key.member("counter").error("must be a number within the record");
        }
        rule.condition = static_cast<int>(
            key.integer("condition", 0, static_cast<std::int64_t>(model_.conditions.size()), 0));
        if (rule.condition > 0 &&
            !model_.conditions[static_cast<std::size_t>(rule.condition - 1)].tables.empty()) {
            key.member("condition").error("must not lie in tables");
        }
        const std::int32_t length = model_.record_length;
        rule.table_offset = static_cast<std::int32_t>(key.integer("table_offset", 0, length));
        rule.stride = static_cast<std::int32_t>(key.integer("stride", 1, length));
        rule.max = static_cast<std::int32_t>(key.integer("max", 1, MAX_OCCURS));
        rule.min = static_cast<std::int32_t>(key.integer("min", 0, rule.max));
        const std::int64_t end =
            rule.table_offset + static_cast<std::int64_t>(rule.stride) * rule.max;
        if (end > length) key.member("max").error("makes the table longer than the record");
        model_.length_rules.push_back(std::move(rule));
    }

    const LayoutOptions& options_;
    Model model_;
    std::size_t items_ = 0;
    std::size_t named_fields_ = 0;
    std::set<std::string> groups_;
    std::set<std::string> fields_;
};

}  // namespace

std::optional<Description> description_from_json(std::string_view json, const std::string& file,
                                                 const LayoutOptions& options,
                                                 Diagnostics& diagnostics) {
    json::Value value;
    try {
        value = json::Value::parse(json);
    } catch (const json::Value::exception& failure) {
        diagnostics.error({}, file + ": no valid JSON: " + failure.what());
        return std::nullopt;
    }
    Key::Report report{file, diagnostics};
    Model model = Reader(options).read(Key(value, "", report));
    if (report.errors > 0) return std::nullopt;
    std::string problem;
    std::unique_ptr<DescriptionData> data = flatten(std::move(model), problem);
    if (data) return Description(std::move(data));
    diagnostics.error({}, file + ": " + problem);
    return std::nullopt;
}

}  // namespace records
