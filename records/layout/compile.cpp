#include <algorithm>
#include <filesystem>

#include "platform/paths.h"
#include "records/copybook.h"
#include "records/layout/description_data.h"
#include "records/layout/forms.h"
#include "records/layout/names.h"
#include "records/layout/placement.h"
#include "records/layout/variants.h"

namespace records {
namespace {

std::string redefined_name(const Node& node) {
    return node.source->redefines;
}

ModelItem model_item(const Node& node) {
    const DataItem& source = *node.source;
    ModelItem item;
    item.name = node.name;
    item.cobol_name = node.is_wrapped ? std::string() : source.name;
    item.level = node.is_wrapped ? source.level + 1 : source.level;
    item.offset = static_cast<std::int32_t>(node.offset);
    item.length = static_cast<std::int32_t>(node.size);
    item.group = node.is_group();
    item.condition = node.condition;
    if (source.occurs && !node.is_wrapped) {
        item.table = Table{node.occurs, std::min(source.occurs->min, node.occurs),
                           static_cast<std::int32_t>(node.stride), source.occurs->depending_on,
                           node.counter};
    }
    if (!item.group) {
        item.form = node.form;
        item.picture = source.picture ? source.picture->text : std::string();
        item.usage = usage_name(node.usage);
    }
    item.redefines = node.is_wrapped ? std::string() : redefined_name(node);
    for (const auto& child : node.children) item.children.push_back(model_item(*child));
    return item;
}

// A record that is a field becomes a group with that field in it: at level 1 stand groups only.
void wrap_field(Node& record, const LayoutOptions& options) {
    if (record.is_group()) return;
    std::unique_ptr<Node> field = clone(record, &record);
    field->is_wrapped = true;
    if (!field->name.empty()) {
        field->name =
            join_names(record.name, xml_name("DATA", options.name_case), options.name_case);
    }
    record.children.push_back(std::move(field));
}

void drop_empty_groups(Node& record, Diagnostics& diagnostics) {
    for_each(record, [&](Node& node) {
        if (node.name.empty() || gives_element(node)) return;
        diagnostics.warning(node.source->place,
                            item_name(*node.source) +
                                " holds no field that gives an element; it gives none either");
        node.name.clear();
    });
}

bool has_counter(const Node& node) {
    return node.source->occurs && !node.source->occurs->depending_on.empty();
}

bool has_moving_data(const Node& record) {
    return !moving_tables(record).empty();
}

const Node* root_of(const Node& node) {
    const Node* at = &node;
    while (at->parent != nullptr) at = at->parent;
    return at;
}

// Whether the item redefines another one of its group, or is redefined.
bool shares_its_place(const Node& node) {
    if (node.redefined >= 0) return true;
    if (node.parent == nullptr) return false;
    const auto& siblings = node.parent->children;
    return std::any_of(siblings.begin(), siblings.end(), [&](const auto& other) {
        return other->redefined >= 0 &&
               siblings[static_cast<std::size_t>(other->redefined)].get() == &node;
    });
}

class Compiler {
  public:
    Compiler(const RecordSource& source, const LayoutOptions& options, Diagnostics& diagnostics)
        : source_(source), options_(options), diagnostics_(diagnostics) {}

    std::optional<Description> run() {
        place_records();
        if (diagnostics_.has_errors()) return std::nullopt;
        if (layouts_.empty()) {
            diagnostics_.error({}, "no record description found");
            return std::nullopt;
        }
        const NameScope scope(layouts_);
        // Where one layout slides, all records lie packed.
        const bool slides = options_.slides() &&
                            std::any_of(layouts_.begin(), layouts_.end(),
                                        [](const auto& each) { return has_moving_data(*each); });
        int fillers = 0;
        for (const auto& layout : layouts_) {
            set_forms(*layout, options_, diagnostics_);
            set_names(*layout, options_, diagnostics_, fillers);
            if (slides) {
                find_counters(*layout, scope);
            } else {
                find_length_rules(*layout, scope);
            }
            wrap_field(*layout, options_);
            drop_empty_groups(*layout, diagnostics_);
        }
        return describe(scope);
    }

  private:
    void place_records() {
        const bool has_records =
            std::any_of(source_.records.begin(), source_.records.end(),
                        [](const auto& record) { return record->level != 77; });
        for (const auto& record : source_.records) {
            if (record->level == 66) continue;
            if (record->level == 77 && has_records) {
                diagnostics_.warning(record->place, item_name(*record) +
                                                        " (level 77) is not part of a record; it "
                                                        "is left out");
                continue;
            }
            std::unique_ptr<Node> placed = place_record(*record, options_, diagnostics_);
            if (placed) layouts_.push_back(std::move(placed));
        }
    }

    // Of each table that slides: where its counter is. A table that moves nothing need not slide.
    void find_counters(Node& record, const NameScope& scope) {
        const bool must_slide = has_moving_data(record);
        for_each(record, [&](Node& table) {
            if (!has_counter(table)) return;
            const Occurs& occurs = *table.source->occurs;
            std::vector<std::string> name{occurs.depending_on};
            name.insert(name.end(), occurs.depending_on_of.begin(), occurs.depending_on_of.end());
            const NameScope::Found counter = scope.find(name, table);
            const std::string problem = counter_problem(record, table, counter);
            if (problem.empty()) {
                table.counter = operand_of(*counter.node, table);
            } else if (must_slide) {
                diagnostics_.error(occurs.place, problem);
            } else {
                diagnostics_.warning(occurs.place, "the counter " + occurs.depending_on +
                                                       " does not tell the length of " +
                                                       item_name(*table.source) +
                                                       "; the table is taken at its maximum");
            }
        });
    }

    static std::string counter_problem(const Node& record, const Node& table,
                                       const NameScope::Found& counter) {
        const std::string name = table.source->occurs->depending_on;
        for (const Node* at = &table; at != nullptr; at = at->parent) {
            if (shares_its_place(*at)) {
                return item_name(*table.source) + " cannot slide, since " + item_name(*at->source) +
                       " redefines an item or is redefined; give --odo fixed";
            }
        }
        const bool is_number = counter.node != nullptr && counter.condition == nullptr &&
                               is_numeric_type(counter.node->form.type);
        if (!is_number || root_of(*counter.node) != &record) {
            return "the counter " + name +
                   " is not a number in the record, so that the table's length is not known; give "
                   "--odo fixed if every record holds the whole table";
        }
        if (counter.node->offset + counter.node->size > table.offset) {
            return "the counter " + name + " must come before its table";
        }
        return {};
    }

    // Remembers how the record's length follows from a counter when a table with one ends it.
    void find_length_rules(const Node& record, const NameScope& scope) {
        const Node* at = &record;
        while (at->is_group()) {
            const std::int64_t end = record.size;
            const auto last =
                std::find_if(at->children.rbegin(), at->children.rend(), [end](const auto& child) {
                    return child->redefined < 0 && child->offset + child->extent() == end;
                });
            if (last == at->children.rend()) return;
            at = last->get();
            if (at->source->occurs && !at->source->occurs->depending_on.empty()) break;
            if (at->occurs > 1) return;
        }
        if (!at->source->occurs || at->source->occurs->depending_on.empty()) return;
        add_length_rule(record, *at, scope);
    }

    void add_length_rule(const Node& record, const Node& table, const NameScope& scope) {
        const Occurs& occurs = *table.source->occurs;
        std::vector<std::string> name{occurs.depending_on};
        name.insert(name.end(), occurs.depending_on_of.begin(), occurs.depending_on_of.end());
        const NameScope::Found counter = scope.find(name, table);
        if (counter.node == nullptr || counter.condition != nullptr ||
            !is_numeric_type(counter.node->form.type) || !tables_of(*counter.node).empty()) {
            diagnostics_.warning(occurs.place,
                                 "the counter " + occurs.depending_on +
                                     " is not a number in the record; the table is taken at its "
                                     "maximum");
            return;
        }
        length_rules_.push_back(
            {record.source,
             {0, operand_of(*counter.node, record), static_cast<std::int32_t>(table.offset),
              static_cast<std::int32_t>(table.stride), std::clamp(occurs.min, 0, table.occurs),
              table.occurs}});
    }

    std::optional<Description> describe(const NameScope& scope) {
        Model model;
        // A file's records may be longer than their descriptions.
        model.record_length = std::min(source_.record_contains, MAX_RECORD_LENGTH);
        for (const auto& layout : layouts_) {
            model.record_length =
                std::max(model.record_length, static_cast<std::int32_t>(layout->size));
        }
        const std::size_t described = choose_layouts(layouts_, scope, options_, diagnostics_);
        if (diagnostics_.has_errors()) return std::nullopt;
        if (described == 0) {
            diagnostics_.error(source_.records.front()->place,
                               "no field of the record gives an element; name a field, or ask "
                               "for FILLER items");
            return std::nullopt;
        }
        model.conditions = number_conditions(layouts_, described, diagnostics_);
        for (std::size_t i = 0; i < layouts_.size(); ++i) {
            add_length_rules(*layouts_[i], i < described, model);
        }
        std::vector<std::unique_ptr<Node>> named;
        std::move(layouts_.begin(), layouts_.begin() + static_cast<std::ptrdiff_t>(described),
                  std::back_inserter(named));
        model.name = settle_names(named, description_name(), source_.file, options_, diagnostics_);
        model.decimal_comma = source_.decimal_point_is_comma;
        model.ebcdic = options_.encoding == RecordEncoding::ebcdic;
        for (const auto& layout : named) model.layouts.push_back(model_item(*layout));
        for (const auto& layout : layouts_) {
            if (layout) model.layouts.push_back(model_item(*layout));
        }
        return finish(std::move(model));
    }

    void add_length_rules(const Node& layout, bool described, Model& model) const {
        if (!described) return;
        for (const auto& [record, rule] : length_rules_) {
            if (record != layout.source) continue;
            model.length_rules.push_back(rule);
            model.length_rules.back().condition = layout.condition;
        }
    }

    std::optional<Description> finish(Model model) {
        std::string problem;
        std::unique_ptr<DescriptionData> data = flatten(std::move(model), problem);
        if (data) return Description(std::move(data));
        diagnostics_.error(source_.records.front()->place, problem);
        return std::nullopt;
    }

    std::string description_name() const {
        std::string name = options_.name;
        if (name.empty()) name = source_.name;
        if (name.empty() && names_itself(source_.file)) {
            name = platform::name_of(platform::path_of(source_.file).stem());
        }
        if (name.empty()) name = "RECORDS";
        return cut_name(xml_name(name, options_.name_case), MAX_DESCRIPTION_NAME);
    }

    const RecordSource& source_;
    const LayoutOptions& options_;
    Diagnostics& diagnostics_;
    std::vector<std::unique_ptr<Node>> layouts_;
    std::vector<std::pair<const DataItem*, LengthRule>> length_rules_;
};

}  // namespace

std::optional<Description> compile_description(const RecordSource& source,
                                               const LayoutOptions& options,
                                               Diagnostics& diagnostics) {
    return Compiler(source, options, diagnostics).run();
}

}  // namespace records
