#include <algorithm>

#include "records/alignment.h"
#include "records/layout/conditions/condition_check.h"
#include "records/layout/description_data.h"

namespace records {
namespace {

struct Dimension {
    std::int16_t occurs;
    std::int16_t subscript;
    std::int32_t stride;
};

void copy_name(char* to, std::size_t size, const std::string& name) {
    to[name.copy(to, size - 1)] = '\0';
}

// Walks the model as the module sees it: every occurrence of a table, items without elements left
// out, what lies in a group without a name taken as the enclosing group's.
class Flattener {
  public:
    Flattener(const Model& model, XfdBlock& block) : model_(model), block_(block) {}

    std::string run() {
        std::string problem = number_conditions();
        if (!problem.empty()) return problem;
        std::int64_t count = 0;
        for (const ModelItem& layout : model_.layouts) {
            count += counted(layout, 0, problem);
            if (!problem.empty()) return problem;
        }
        if (count > MAX_ITEMS) {
            return "the description has " + std::to_string(count) +
                   " items when every occurrence is counted, more than the " +
                   std::to_string(MAX_ITEMS) + " that can be described; hide some tables";
        }
        block_.own_items.reserve(static_cast<std::size_t>(count));
        for (const ModelItem& layout : model_.layouts) {
            if (!layout.name.empty()) each_occurrence(layout, 1, 0);
        }
        return {};
    }

  private:
    std::string number_conditions() {
        auto tests = std::make_shared<ConditionSet>();
        for (std::size_t i = 0; i < model_.conditions.size(); ++i) {
            const Condition& condition = model_.conditions[i];
            std::string problem = condition_problem(condition, model_.record_length);
            if (!problem.empty()) return problem;
            tests->first_number.push_back(tests->numbered.size());
            add_occurrences(i, condition.tables, 0, {0}, tests->numbered);
            if (tests->numbered.size() > static_cast<std::size_t>(MAX_CONDITIONS)) {
                return "the description has more than " + std::to_string(MAX_CONDITIONS) +
                       " conditions (one for each occurrence of a table that holds variants); "
                       "hide some variants";
            }
            tests->tests.emplace_back(condition.test, model_.ebcdic);
        }
        block_.own_conditions.resize(tests->numbered.size());
        // The module replaces a group by the item tied to a condition at the same offset. Every
        // group here is written as itself, so no item is tied.
        for (XfdCondition& condition : block_.own_conditions) condition.item = -1;
        block_.tests = std::move(tests);
        return {};
    }

    static void add_occurrences(std::size_t condition, const std::vector<ConditionTable>& tables,
                                std::size_t depth, std::vector<std::int32_t> shifts,
                                std::vector<ConditionSet::Numbered>& numbered) {
        if (numbered.size() > static_cast<std::size_t>(MAX_CONDITIONS)) return;
        if (depth == tables.size()) {
            numbered.push_back({condition, std::move(shifts)});
            return;
        }
        for (std::int32_t i = 0; i < tables[depth].occurs; ++i) {
            std::vector<std::int32_t> inner = shifts;
            inner.push_back(shifts.back() + i * tables[depth].stride);
            add_occurrences(condition, tables, depth + 1, std::move(inner), numbered);
            if (numbered.size() > static_cast<std::size_t>(MAX_CONDITIONS)) return;
        }
    }

    // Number of flattened items; large values stay large rather than wrapping.
    std::int64_t counted(const ModelItem& item, int dimensions, std::string& problem) {
        if (item.table && item.table->occurs > 1) ++dimensions;
        if (dimensions > XFD_MAX_DIMENSIONS) {
            problem = "tables are nested more than " + std::to_string(XFD_MAX_DIMENSIONS) +
                      " deep at " + (item.cobol_name.empty() ? item.name : item.cobol_name) +
                      "; a description holds no more";
            return 0;
        }
        std::int64_t count = item.name.empty() ? 0 : 1;
        for (const ModelItem& child : item.children) {
            count += counted(child, dimensions, problem);
            if (!problem.empty()) return 0;
        }
        const std::int64_t occurs = item.table ? item.table->occurs : 1;
        return std::min(count, MAX_ITEMS + 1) * occurs;
    }

    void each_occurrence(const ModelItem& item, int level, std::int32_t shift) {
        const int occurs = item.table ? item.table->occurs : 1;
        if (occurs <= 1) {
            add(item, level, shift);
            return;
        }
        dimensions_.push_back({static_cast<std::int16_t>(occurs), 1, item.table->stride});
        for (int i = 1; i <= occurs; ++i) {
            dimensions_.back().subscript = static_cast<std::int16_t>(i);
            add(item, level, shift + (i - 1) * item.table->stride);
        }
        dimensions_.pop_back();
    }

    void add(const ModelItem& item, int level, std::int32_t shift) {
        const bool named = !item.name.empty();
        if (named) block_.own_items.push_back(flattened(item, level, shift));
        if (!item.group) return;
        for (const ModelItem& child : item.children) {
            if (child.name.empty() && !child.group) continue;
            each_occurrence(child, named ? level + 1 : level, shift);
        }
    }

    // True for a table whose counter decides where the record ends.
    bool ends_record(const ModelItem& item) const {
        return item.table && !item.table->depending_on.empty() &&
               std::any_of(model_.length_rules.begin(), model_.length_rules.end(),
                           [&item](const LengthRule& rule) {
                               return rule.table_offset == item.offset &&
                                      rule.stride == item.table->stride;
                           });
    }

    XfdItem flattened(const ModelItem& item, int level, std::int32_t shift) const {
        XfdItem result{};
        result.offset = item.offset + shift;
        // A group is written when it starts within the record or at its end: the entry after the
        // last one in use would be, and be empty. Its second byte tells whether it is there.
        if (item.group && ends_record(item)) ++result.offset;
        result.data.length = item.length;
        result.level = static_cast<std::int16_t>(level);
        result.condition = item.group ? XFD_GROUP : condition_number(item.condition);
        result.dimensions_word = static_cast<std::uint32_t>(dimensions_.size());
        for (std::size_t i = 0; i < dimensions_.size(); ++i) {
            result.occurs_max[i] = dimensions_[i].occurs;
            result.subscripts[i] = dimensions_[i].subscript;
        }
        copy_name(result.name, sizeof result.name, item.name);
        if (item.group) return result;
        const FieldForm& form = item.form;
        result.data.type = form.type;
        result.data.digits = static_cast<std::int8_t>(form.digits);
        result.data.scale = static_cast<std::int8_t>(form.scale);
        result.format = form.hex ? XFD_FORMAT_BINARY : std::int16_t{0};
        set_field_extra(result.data, {static_cast<std::int8_t>(form.stored_digits),
                                      static_cast<std::int8_t>(form.stored_scale), form.flags,
                                      edges_of(form.type, item.picture)});
        return result;
    }

    // The number of the condition for the present occurrence.
    std::int16_t condition_number(int condition) const {
        if (condition == 0) return 0;
        const auto index = static_cast<std::size_t>(condition - 1);
        const std::vector<ConditionTable>& tables = model_.conditions[index].tables;
        std::size_t occurrence = 0;
        for (std::size_t i = 0; i < tables.size(); ++i) {
            occurrence = occurrence * static_cast<std::size_t>(tables[i].occurs) +
                         static_cast<std::size_t>(dimensions_[i].subscript - 1);
        }
        return static_cast<std::int16_t>(block_.tests->first_number[index] + occurrence + 1);
    }

    const Model& model_;
    XfdBlock& block_;
    std::vector<Dimension> dimensions_;
};

std::string occurs_text(const std::optional<Table>& table) {
    if (!table) return {};
    if (table->depending_on.empty()) return std::to_string(table->occurs);
    return std::to_string(table->min) + " to " + std::to_string(table->occurs) + " depending on " +
           table->depending_on;
}

// `around`: the path of the group that the item is in, `depth` the number of such groups.
void add_rows(const Model& model, const ModelItem& item, const std::string& around, int depth,
              std::vector<Description::Row>& rows) {
    const auto condition = static_cast<std::size_t>(item.condition);
    const std::string path =
        item.name.empty() ? around : around + (around.empty() ? "" : "/") + item.name;
    const Table table = item.table.value_or(Table{});
    rows.push_back({item.offset, item.length, item.level,
                    item.cobol_name.empty() ? item.name : item.cobol_name, item.name, item.picture,
                    item.usage, occurs_text(item.table),
                    condition == 0 ? std::string() : model.conditions[condition - 1].text,
                    item.redefines, depth, item.name.empty() ? std::string() : path,
                    table.depending_on.empty() ? table.occurs : table.min, table.occurs,
                    table.stride, table.depending_on});
    for (const ModelItem& child : item.children) add_rows(model, child, path, depth + 1, rows);
}

std::vector<SlidingPlan> sliding_plans(const Model& model, std::string& problem) {
    std::vector<SlidingPlan> plans;
    if (std::none_of(model.layouts.begin(), model.layouts.end(), has_counted_table)) return plans;
    for (const ModelItem& layout : model.layouts) {
        if (!layout.name.empty()) plans.push_back(make_sliding_plan(layout, problem));
    }
    return plans;
}

std::size_t described_layouts(const Model& model) {
    return static_cast<std::size_t>(
        std::count_if(model.layouts.begin(), model.layouts.end(),
                      [](const ModelItem& layout) { return !layout.name.empty(); }));
}

}  // namespace

XfdBlock::XfdBlock(const XfdBlock& other)
    : Xfd(other),
      own_conventions(other.own_conventions),
      own_items(other.own_items),
      own_conditions(other.own_conditions),
      tests(other.tests) {
    connect();
}

void XfdBlock::connect() {
    conventions = &own_conventions;
    conditions = own_conditions.data();
    condition_count = static_cast<std::int16_t>(own_conditions.size());
    items = own_items.data();
    item_count = static_cast<std::int32_t>(own_items.size());
    record_scan_count = item_count;
}

std::unique_ptr<DescriptionData> flatten(Model model, std::string& problem) {
    auto data = std::make_unique<DescriptionData>();
    data->model = std::move(model);
    XfdBlock& block = data->block;
    problem = Flattener(data->model, block).run();
    if (!problem.empty()) return nullptr;
    if (block.own_items.empty()) {
        problem = "the description has no field";
        return nullptr;
    }
    copy_name(block.name, sizeof block.name, data->model.name);
    // Qconvert writes and reads the same character that the module replaces by a full stop when
    // writing; a full stop on both sides serves both directions whatever the source declares.
    block.own_conventions.decimal_point = '.';
    block.flags = described_layouts(data->model) > 1 ? XFD_SEVERAL_LAYOUTS : std::uint8_t{0};
    block.connect();
    for (const ModelItem& layout : data->model.layouts) {
        add_rows(data->model, layout, "", 0, data->rows);
    }
    data->plans = sliding_plans(data->model, problem);
    return problem.empty() ? std::move(data) : nullptr;
}

}  // namespace records
