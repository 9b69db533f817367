// The compiler's working tree: a data item together with its place in the record and what it is to
// give in XML.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "records/data_item.h"
#include "records/description.h"
#include "records/diagnostics.h"
#include "records/layout/model.h"

namespace records {

struct Node {
    const DataItem* source = nullptr;
    bool is_wrapped = false;  // the field that a record without groups was made a group for
    Node* parent = nullptr;
    std::vector<std::unique_ptr<Node>> children;

    // Placement.
    std::int64_t offset = 0;
    std::int64_t size = 0;    // of one occurrence
    std::int64_t stride = 0;  // bytes from one occurrence to the next
    int occurs = 1;
    Usage usage = Usage::display;
    bool sign_leading = false;
    bool sign_separate = false;
    bool is_synchronized = false;    // on the mainframe also by a group around it
    std::optional<Operand> counter;  // of a table that slides
    int redefined = -1;  // index among the parent's children of the item whose place this shares

    // In XML.
    FieldForm form;
    std::string name;              // empty: no element
    bool is_left_over = false;     // a variant of a place that has none in this layout
    std::optional<Test> own_test;  // what must hold for this item, beside its parents' tests
    int condition = 0;

    bool is_group() const { return !children.empty(); }
    std::int64_t extent() const { return occurs > 1 ? stride * (occurs - 1) + size : size; }
};

// The tables that an item lies in, outermost first, itself included.
std::vector<const Node*> tables_of(const Node& node);
// A copy with its subordinates, below `parent`.
std::unique_ptr<Node> clone(const Node& node, Node* parent);
// True when the item or one of its subordinates gives an element.
bool gives_element(const Node& node);
// The item and its subordinates give no element from here on.
void remove_elements(Node& node);

// Calls visit(node) for the item and its subordinates in layout order.
template <typename NodeType, typename Visit>
void for_each(NodeType& node, const Visit& visit) {
    visit(node);
    for (const auto& child : node.children) for_each(static_cast<NodeType&>(*child), visit);
}

}  // namespace records
