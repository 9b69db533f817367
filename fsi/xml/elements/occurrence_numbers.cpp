#include "fsi/xml/elements/occurrence_numbers.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr std::int32_t LAST_POSITION = XML_INDEX_LIMIT - 1;

bool is_full(const XmlElement& element) {
    return element.last_index == LAST_POSITION;
}

// Puts the number 1 at a position, after the numbers of the ancestors and before the element's
// own. The element is not full.
void insert_first(XmlElement& element, std::int32_t position) {
    std::uint32_t* const at = element.indices + position;
    std::uint32_t* const end = element.indices + (element.last_index + 1);
    std::move_backward(at, end, end + 1);
    *at = 1;
    ++element.last_index;
}

// The entry after `element` in a walk, parents first, over everything below `top`; null at the end.
const HostListNode* next_below(const XmlElement& top, const XmlElement* element) {
    while (element != &top) {
        if (element->sibling_node->next) return element->sibling_node->next;
        element = element_of(element->parent);
    }
    return nullptr;
}

// Gives everything below `top` the number 1 after position `level`. A full element ends the walk
// downwards: those below it are full as well. So each element is visited at most once for each
// number that its parent gains, however often numbers are inserted.
void add_index_level(const XmlElement& top, std::int32_t level) {
    const HostListNode* node = first_child_node(top);
    while (node) {
        XmlElement* const element = element_of(node->value);
        const bool open = !is_full(*element);
        if (open) insert_first(*element, level + 1);
        const HostListNode* const below = open ? first_child_node(*element) : nullptr;
        node = below ? below : next_below(top, element);
    }
}

}  // namespace

void number_child(const XmlElement& parent, XmlElement& child, SameName same) {
    child.last_index = parent.last_index;
    std::copy(std::begin(parent.indices), std::end(parent.indices), child.indices);
    if (same.count == 0 || is_full(parent)) return;

    XmlElement& first = *element_of(same.first);
    if (first.last_index == parent.last_index) {
        add_index_level(first, first.last_index);
        first.indices[++first.last_index] = 1;
    }
    child.indices[++child.last_index] = same.count + 1;
}
