#include "records/layout/variants.h"

#include <algorithm>
#include <span>

#include "records/layout/forms.h"
#include "records/layout/names.h"
#include "records/layout/placement.h"

namespace records {
namespace {

constexpr const char* HOW_TO_CHOOSE =
    "; say when each is meant with a \"when\" directive, or leave the others out with \"hide\"";
constexpr std::size_t MAX_LAYOUTS = 256;

// A variant's own table is not one of the items beside it.
void limit_tables(Test& test, int tables) {
    test.left.tables = std::min(test.left.tables, tables);
    test.right.tables = std::min(test.right.tables, tables);
    for (Test& each : test.operands) limit_tables(each, tables);
}

Test none_of(const std::vector<Node*>& nodes) {
    const Node* group = nodes.front()->parent;
    const int tables = group == nullptr ? 0 : static_cast<int>(tables_of(*group).size());
    Test any;
    any.kind = Test::Kind::logical_or;
    for (const Node* node : nodes) {
        any.operands.push_back(*node->own_test);
        limit_tables(any.operands.back(), tables);
    }
    Test none;
    none.kind = Test::Kind::logical_not;
    none.operands.push_back(any.operands.size() == 1 ? any.operands[0] : any);
    return none;
}

Test holds_by_itself() {
    Test test;
    test.kind = Test::Kind::logical_and;
    return test;
}

// Both tests, as one flat conjunction.
Test both(const Test& first, const Test& second) {
    Test all;
    all.kind = Test::Kind::logical_and;
    for (const Test* test : {&first, &second}) {
        if (test->kind == Test::Kind::logical_and) {
            all.operands.insert(all.operands.end(), test->operands.begin(), test->operands.end());
        } else {
            all.operands.push_back(*test);
        }
    }
    return all;
}

void note_taken(const Node& taken, std::span<Node* const> others, const char* what,
                Diagnostics& diagnostics) {
    std::string names;
    for (const Node* other : others) {
        names += (names.empty() ? "" : ", ") + item_name(*other->source);
    }
    diagnostics.warning(others.front()->source->place,
                        std::string(what) + " " + item_name(*taken.source) + " is described, not " +
                            names + HOW_TO_CHOOSE);
}

// Decides about items of one place. Those that stay undescribed lose their elements.
void choose_among(const std::vector<Node*>& sharing, const char* what, Diagnostics& diagnostics) {
    std::vector<Node*> tested;
    std::vector<Node*> untested;
    for (Node* node : sharing) {
        if (!gives_element(*node)) continue;
        (node->own_test ? tested : untested).push_back(node);
    }
    if (untested.empty()) return;
    const std::span<Node* const> others = std::span(untested).subspan(1);
    if (!others.empty()) note_taken(*untested.front(), others, what, diagnostics);
    for (Node* other : others) remove_elements(*other);
    if (!tested.empty()) untested.front()->own_test = none_of(tested);
}

// Gives the records without a test this one: none of the others' tests holds.
void describe_each(const std::vector<Node*>& records) {
    std::vector<Node*> tested;
    std::copy_if(records.begin(), records.end(), std::back_inserter(tested),
                 [](const Node* record) { return record->own_test && gives_element(*record); });
    const Test test = tested.empty() ? holds_by_itself() : none_of(tested);
    for (Node* record : records) {
        if (!record->own_test && gives_element(*record)) record->own_test = test;
    }
}

void resolve_whens(Node& record, const NameScope& scope, Diagnostics& diagnostics) {
    for_each(record, [&](Node& node) {
        if (!node.source->when || node.is_wrapped) return;
        node.own_test = resolve(*node.source->when, node, scope, diagnostics);
    });
}

// For each place in the group that several items share: those items.
std::vector<std::vector<Node*>> shared_places(Node& group) {
    std::vector<std::vector<Node*>> by_original(group.children.size());
    for (std::size_t i = 0; i < group.children.size(); ++i) {
        Node& child = *group.children[i];
        const auto original = child.redefined < 0 ? i : static_cast<std::size_t>(child.redefined);
        by_original[original].push_back(&child);
    }
    std::vector<std::vector<Node*>> places;
    for (auto& place : by_original) {
        if (!place.empty()) places.push_back(std::move(place));
    }
    return places;
}

// The first place below the item that depends on a test; empty when there is none.
std::vector<Node*> first_tested_place(Node& group) {
    for (const std::vector<Node*>& place : shared_places(group)) {
        std::vector<Node*> tested;
        std::copy_if(place.begin(), place.end(), std::back_inserter(tested),
                     [](Node* node) { return node->own_test.has_value() && gives_element(*node); });
        if (!tested.empty()) return tested;
    }
    for (const auto& child : group.children) {
        std::vector<Node*> found = first_tested_place(*child);
        if (!found.empty()) return found;
    }
    return {};
}

// The item in `copy` that stands where `node` stands in `original`.
Node* counterpart(const Node& original, Node& copy, const Node* node) {
    if (&original == node) return &copy;
    for (std::size_t i = 0; i < original.children.size(); ++i) {
        Node* found = counterpart(*original.children[i], *copy.children[i], node);
        if (found != nullptr) return found;
    }
    return nullptr;
}

void keep_first_in_table(const std::vector<Node*>& place, Diagnostics& diagnostics) {
    Node& first = *place.front();
    diagnostics.warning(first.source->place,
                        "variants in a table of one of several record layouts cannot be told "
                        "apart; " +
                            item_name(*first.source) + " is described");
    first.own_test.reset();
    for (std::size_t i = 1; i < place.size(); ++i) remove_elements(*place[i]);
}

// The layout as it is with one of the variants of a place (`kept`), or with none (null).
std::unique_ptr<Node> with_variant(const Node& layout, const std::vector<Node*>& place,
                                   const Node* kept) {
    std::unique_ptr<Node> copy = clone(layout, nullptr);
    for (const Node* variant : place) {
        Node* own = counterpart(layout, *copy, variant);
        const std::optional<Test> test = std::move(own->own_test);
        own->own_test.reset();
        own->is_left_over = kept == nullptr;
        if (variant != kept) {
            remove_elements(*own);
        } else if (test) {
            copy->own_test = copy->own_test ? both(*copy->own_test, *test) : *test;
        }
    }
    if (kept == nullptr) {
        const Test none = none_of(place);
        copy->own_test = copy->own_test ? both(*copy->own_test, none) : none;
    }
    return copy;
}

bool is_exhaustive(const std::vector<Node*>& place) {
    return std::any_of(place.begin(), place.end(),
                       [](const Node* node) { return !node->source->when; });
}

// Describes a layout once for each variant in it; appends the results.
bool split(std::unique_ptr<Node> layout, const LayoutOptions& options, Layouts& result,
           Diagnostics& diagnostics) {
    Layouts open;
    open.push_back(std::move(layout));
    while (!open.empty()) {
        std::unique_ptr<Node> next = std::move(open.back());
        open.pop_back();
        const std::vector<Node*> place = first_tested_place(*next);
        if (place.empty()) {
            result.push_back(std::move(next));
            if (result.size() <= MAX_LAYOUTS) continue;
            diagnostics.error(result.front()->source->place,
                              "the variants of the record layouts combine in more than " +
                                  std::to_string(MAX_LAYOUTS) + " ways; hide some of them");
            return false;
        }
        if (!tables_of(*place.front()).empty()) {
            keep_first_in_table(place, diagnostics);
            open.push_back(std::move(next));
            continue;
        }
        // The last pushed is taken first, so that variants come out in their own order.
        if (!is_exhaustive(place)) {
            open.push_back(with_variant(*next, place, nullptr));
            open.back()->name =
                join_names(next->name, xml_name("OTHER", options.name_case), options.name_case);
        }
        for (std::size_t i = place.size(); i-- > 0;) {
            open.push_back(with_variant(*next, place, place[i]));
            if (i > 0 && !place[i]->name.empty()) {
                open.back()->name = join_names(next->name, place[i]->name, options.name_case);
            }
        }
    }
    return true;
}

// The only layout is used for every record.
void drop_test(Node& layout, Diagnostics& diagnostics) {
    if (layout.own_test) {
        diagnostics.warning(layout.source->place,
                            item_name(*layout.source) +
                                " is the only record layout described; its condition is not "
                                "tested, and every record is taken for one");
    }
    layout.own_test.reset();
}

// True when a layout has an element that only its own records have.
bool has_own_field(const Node& layout) {
    bool found = false;
    for_each(layout, [&found](const Node& node) {
        if (!node.is_group() && !node.name.empty() && node.condition != 0) found = true;
    });
    return found;
}

}  // namespace

bool asks_for_text(const Test& test) {
    return test.kind == Test::Kind::comparison && test.relation == Expression::Relation::equal &&
           test.left.kind == Operand::Kind::item && test.left.tables == 0 && test.left.length > 0 &&
           test.right.kind == Operand::Kind::text;
}

void choose_variants(Node& record, const NameScope& scope, Diagnostics& diagnostics) {
    resolve_whens(record, scope, diagnostics);
    for_each(record, [&](Node& group) {
        for (const std::vector<Node*>& place : shared_places(group)) {
            if (place.size() > 1) {
                choose_among(place, "of the items that redefine each other", diagnostics);
            }
        }
    });
}

std::size_t choose_layouts(Layouts& layouts, const NameScope& scope, const LayoutOptions& options,
                           Diagnostics& diagnostics) {
    std::vector<Node*> records;
    for (const auto& layout : layouts) {
        choose_variants(*layout, scope, diagnostics);
        records.push_back(layout.get());
    }
    if (options.every_record) {
        describe_each(records);
    } else {
        choose_among(records, "of the record layouts", diagnostics);
    }
    const auto first_undescribed = std::stable_partition(
        layouts.begin(), layouts.end(), [](const auto& layout) { return gives_element(*layout); });
    std::stable_partition(layouts.begin(), first_undescribed,
                          [](const auto& layout) { return layout->source->when.has_value(); });
    const auto described = static_cast<std::size_t>(first_undescribed - layouts.begin());
    if (described <= 1) {
        if (described == 1) drop_test(*layouts[0], diagnostics);
        return described;
    }
    Layouts result;
    for (std::size_t i = 0; i < described; ++i) {
        if (!split(std::move(layouts[i]), options, result, diagnostics)) break;
    }
    const std::size_t count = result.size();
    std::move(first_undescribed, layouts.end(), std::back_inserter(result));
    layouts = std::move(result);
    return count;
}

namespace {

// Numbers the conditions of a tree, outer ones first, and remembers which items each one tests.
class ConditionNumberer {
  public:
    std::vector<Condition> conditions;

    // One test, and from which condition on it is made.
    struct Tested {
        Operand item;
        int first;
    };
    std::vector<Tested> tested;

    void number(Node& node, const Test* outer) {
        const Test* here = outer;
        std::optional<Test> combined;
        node.condition = 0;
        if (node.own_test && gives_element(node)) {
            combined = outer != nullptr ? both(*outer, *node.own_test) : *node.own_test;
            here = &*combined;
            Condition condition{test_text(*here), {}, *here};
            for (const Node* table : tables_of(node)) {
                condition.tables.push_back(
                    {table->occurs, static_cast<std::int32_t>(table->stride)});
            }
            conditions.push_back(std::move(condition));
            node.condition = static_cast<int>(conditions.size());
            add_tested(*node.own_test, node.condition);
        }
        for (const auto& child : node.children) number(*child, here);
    }

  private:
    void add_tested(const Test& test, int condition) {
        for (const Operand* side : {&test.left, &test.right}) {
            if (side->kind == Operand::Kind::item) tested.push_back({*side, condition});
        }
        for (const Test& each : test.operands) add_tested(each, condition);
    }
};

bool overlaps(const Node& node, const Operand& item) {
    std::int64_t extent = node.size;
    for (const Node* table : tables_of(node)) extent += table->stride * (table->occurs - 1);
    return node.offset < item.offset + item.length && item.offset < node.offset + extent;
}

// True when the field holds (a part of) the item: it has the item's name or lies in its group.
bool is_of(const Node& node, const Operand& item) {
    for (const Node* at = &node; at != nullptr; at = at->parent) {
        if (item_name(*at->source) == item.value && at->offset == item.offset &&
            at->size == item.length) {
            return true;
        }
    }
    return false;
}

using Fields = std::vector<Node*>;

// The fields of a layout (by index) that are filled from XML and hold what a condition tests: the
// tested item itself, or, when the layout does not describe it, what lies in its place.
std::vector<std::size_t> fields_holding(const Fields& fields, const Operand& item) {
    std::vector<std::size_t> result;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (is_of(*fields[i], item)) result.push_back(i);
    }
    if (!result.empty()) return result;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (overlaps(*fields[i], item)) result.push_back(i);
    }
    return result;
}

// The innermost condition around the field with a number below `limit`.
int innermost_below(const Node& field, int limit) {
    for (const Node* at = &field; at != nullptr; at = at->parent) {
        if (at->is_group() || at == &field) {
            if (at->condition != 0 && at->condition < limit) return at->condition;
        }
    }
    return 0;
}

bool is_unused_space(const Node& node) {
    return !node.is_group() && node.name.empty() && node.source->name.empty() &&
           !node.source->hidden && node.redefined < 0 && tables_of(node).empty();
}

// The field that is this item; null when the layout does not describe it.
const Node* field_of(const Node& layout, const Operand& item) {
    const Node* field = nullptr;
    for_each(layout, [&](const Node& node) {
        if (!node.is_group() && !node.name.empty() && is_of(node, item) &&
            item_name(*node.source) == item.value) {
            field = &node;
        }
    });
    return field;
}

class FieldConditions {
  public:
    FieldConditions(const ConditionNumberer& numberer, std::span<const std::unique_ptr<Node>> all,
                    Diagnostics& diagnostics)
        : numberer_(numberer), all_(all), diagnostics_(diagnostics) {}

    void assign(Node& layout) {
        for (const ConditionNumberer::Tested& tested : numberer_.tested) {
            if (decides(tested, layout)) describe_in_unused_space(layout, tested.item);
        }
        Fields fields;
        for_each(layout, [&fields](Node& node) {
            if (!node.is_group() && !node.name.empty()) fields.push_back(&node);
        });
        std::vector<int> result(fields.size());
        for (std::size_t i = 0; i < fields.size(); ++i) {
            result[i] = innermost_below(*fields[i], MAX_CONDITIONS + 1);
        }
        for (const ConditionNumberer::Tested& tested : numberer_.tested) {
            if (!decides(tested, layout)) continue;
            const std::vector<std::size_t> holding = fields_holding(fields, tested.item);
            if (holding.empty()) warn_of_missing(layout, tested.item);
            for (const std::size_t i : holding) {
                result[i] = std::min(result[i], innermost_below(*fields[i], tested.first));
            }
        }
        for (std::size_t i = 0; i < fields.size(); ++i) fields[i]->condition = result[i];
    }

  private:
    // With several layouts only a layout's own test decides about its fields.
    bool decides(const ConditionNumberer::Tested& tested, const Node& layout) const {
        return all_.size() < 2 || tested.first == layout.condition;
    }

    // Programs often declare the field that tells the layouts apart in one of them, and leave its
    // place free in the others.
    void describe_in_unused_space(Node& layout, const Operand& item) const {
        const Node* field = nullptr;
        for (const auto& each : all_) {
            if (field == nullptr) field = field_of(*each, item);
        }
        if (field == nullptr) return;
        for_each(layout, [&](Node& node) {
            const bool holds_its_place = node.offset <= field->offset &&
                                         field->offset + field->size <= node.offset + node.size;
            if (!holds_its_place || !is_unused_space(node)) return;
            node.name = field->name;
            node.source = field->source;
            node.form = field->form;
            node.offset = field->offset;
            node.size = field->size;
        });
    }

    // Reading stores the value that the layout's condition asks for in a field without an element.
    static bool is_told_by_name(const Node& layout) {
        return layout.own_test && asks_for_text(*layout.own_test);
    }

    void warn_of_missing(const Node& layout, const Operand& item) {
        if (is_told_by_name(layout)) return;
        diagnostics_.warning(layout.source->place,
                             "a condition tests " + item.value + ", of which " +
                                 item_name(*layout.source) +
                                 " describes nothing; records read from XML may be taken for "
                                 "another layout");
    }

    const ConditionNumberer& numberer_;
    std::span<const std::unique_ptr<Node>> all_;  // the layouts that are described
    Diagnostics& diagnostics_;
};

// What is written for a layout of which nothing but shared fields is described: an element that
// stands for no bytes.
const DataItem& marker() {
    static const DataItem item = [] {
        DataItem filler;
        filler.level = 2;
        return filler;
    }();
    return item;
}

// The largest variant of the first place for which the layout has none; null when there is none.
Node* left_over_place(Node& layout) {
    Node* found = nullptr;
    for_each(layout, [&found](Node& node) {
        if (!node.is_left_over || node.occurs > 1) return;
        if (found == nullptr || (node.offset == found->offset && node.size > found->size)) {
            found = &node;
        }
    });
    return found;
}

bool holds_text(const FieldForm& form) {
    const bool is_binary =
        form.hex || (is_numeric_type(form.type) && form.type > DISPLAY_SIGN_LEADING_SEPARATE);
    return !is_binary && form.type != OPAQUE;
}

// Text, when all variants that may be there are.
FieldForm left_over_form(const Node& layout, const Node& place) {
    bool is_text = true;
    for_each(layout, [&](const Node& node) {
        if (!node.is_left_over || node.offset != place.offset) return;
        for_each(node, [&](const Node& each) {
            if (!each.is_group() && !holds_text(each.form)) is_text = false;
        });
    });
    return is_text ? FieldForm{} : opaque_form();
}

// A layout whose fields are all in every record would always be chosen. A field of its own tells it
// from the others: its unused space, the bytes of a variant that is not known, or else no bytes.
void describe_own_field(Node& layout) {
    Node* field = nullptr;
    for_each(layout, [&field](Node& node) {
        if (field == nullptr && is_unused_space(node)) field = &node;
    });
    if (field == nullptr) {
        field = left_over_place(layout);
        if (field == nullptr) {
            layout.children.push_back(std::make_unique<Node>());
            field = layout.children.back().get();
            field->source = &marker();
            field->parent = &layout;
        } else {
            field->form = left_over_form(layout, *field);
            field->children.clear();
        }
    }
    field->name = "filler";
    field->condition = layout.condition;
}

}  // namespace

std::vector<Condition> number_conditions(const Layouts& layouts, std::size_t described,
                                         Diagnostics& diagnostics) {
    ConditionNumberer numberer;
    for (std::size_t i = 0; i < described; ++i) numberer.number(*layouts[i], nullptr);
    FieldConditions fields(numberer, std::span(layouts).first(described), diagnostics);
    for (std::size_t i = 0; i < described; ++i) {
        fields.assign(*layouts[i]);
        // What is left of all records needs no mark.
        const bool takes_rest = i + 1 == described && !layouts[i]->source->when;
        if (described > 1 && !takes_rest && !has_own_field(*layouts[i])) {
            describe_own_field(*layouts[i]);
        }
    }
    return std::move(numberer.conditions);
}

}  // namespace records
