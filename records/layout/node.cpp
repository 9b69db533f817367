#include "records/layout/node.h"

#include <algorithm>

namespace records {

std::vector<const Node*> tables_of(const Node& node) {
    std::vector<const Node*> tables;
    for (const Node* at = &node; at != nullptr; at = at->parent) {
        if (at->occurs > 1) tables.push_back(at);
    }
    std::reverse(tables.begin(), tables.end());
    return tables;
}

std::unique_ptr<Node> clone(const Node& node, Node* parent) {
    auto copy = std::make_unique<Node>();
    copy->source = node.source;
    copy->parent = parent;
    copy->is_wrapped = node.is_wrapped;
    copy->offset = node.offset;
    copy->size = node.size;
    copy->stride = node.stride;
    copy->occurs = node.occurs;
    copy->usage = node.usage;
    copy->sign_leading = node.sign_leading;
    copy->sign_separate = node.sign_separate;
    copy->is_synchronized = node.is_synchronized;
    copy->counter = node.counter;
    copy->redefined = node.redefined;
    copy->form = node.form;
    copy->name = node.name;
    copy->is_left_over = node.is_left_over;
    copy->own_test = node.own_test;
    copy->condition = node.condition;
    for (const auto& child : node.children) copy->children.push_back(clone(*child, copy.get()));
    return copy;
}

bool gives_element(const Node& node) {
    if (!node.is_group()) return !node.name.empty();
    return std::any_of(node.children.begin(), node.children.end(),
                       [](const auto& child) { return gives_element(*child); });
}

void remove_elements(Node& node) {
    for_each(node, [](Node& each) { each.name.clear(); });
}

}  // namespace records
