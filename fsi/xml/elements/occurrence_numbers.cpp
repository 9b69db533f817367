#include "fsi/xml/elements/occurrence_numbers.h"

namespace {

// Counts the numbers given to elements.
std::uint64_t numbers_given = 0;

bool is_full(const XmlElement& element) {
    return element.number_count == XML_INDEX_LIMIT;
}

void count_number(XmlElement& element) {
    ++element.number_count;
    if (is_full(element)) element.full_at = numbers_given;
}

// Tells everything below `top` that it has a number now. A full element ends the walk downwards:
// those below it are full as well. So each element is visited at most once for each number that its
// parent gains, however often that happens.
void pass_down(XmlElement& top) {
    const XmlElement* const before = top.numbered;
    bool descends = true;
    XmlElement* element = &top;
    while ((element = next_in_tree(element, &top, descends)) != nullptr) {
        descends = !is_full(*element);
        if (!descends) continue;
        if (element->numbered == before) element->numbered = &top;
        count_number(*element);
    }
}

// Gives an element a number of its own.
void give_number(XmlElement& element, std::uint32_t number) {
    ++numbers_given;
    pass_down(element);
    element.numbered = &element;
    element.numbered_at = numbers_given;
    element.number = number;
    count_number(element);
}

}  // namespace

void number_child(const XmlElement& parent, XmlElement& child, SameName same) {
    child.numbered = parent.numbered;
    child.number_count = parent.number_count;
    child.full_at = parent.full_at;
    if (same.count == 0 || is_full(parent)) return;
    if (same.first->number == 0) give_number(*same.first, 1);
    give_number(child, same.count + 1);
}

int occurrence_numbers(const XmlElement& element, std::uint32_t (&numbers)[XML_INDEX_LIMIT]) {
    const XmlElement* at = element.numbered;
    for (int left = element.number_count; left > 0; at = at->parent->numbered) {
        if (!is_full(element) || at->numbered_at <= element.full_at) numbers[--left] = at->number;
        if (left == 0) break;
    }
    return element.number_count;
}
