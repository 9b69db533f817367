#include "fsi/xml/sxml/reading/find_element.h"

#include "fsi/xml/elements/ascii_case.h"
#include "fsi/xml/sxml/reading/array_signature.h"
#include "fsi/xml/sxml/reading/record_index.h"
#include "host/trace.h"

namespace {

// Longer chains of one name, and longer lists of children, are not walked but looked up in the
// record's index.
constexpr int WALK_LIMIT = 16;

// An item whose element is looked for: the one asked for or, after it, the groups around it from
// the inside out. One that its name does not settle needs the element of a group further out, so
// that looking for one element may mean to look for the elements of many groups.
struct Step {
    std::int32_t item;
    std::int32_t caller;  // the step that waits for this one
    std::int32_t next;    // the step to look at next for the enclosing element
    std::uint32_t result;
    bool is_known;  // `result` is the outcome
};

// One search runs at a time in the process. Enclosing groups have decreasing levels, so there are
// no more than there are 16-bit levels. Pages that no description needs are never touched.
Step steps[65536];

// A repeated search for groups is traced each time, up to this often per search.
constexpr int MOST_REPEATS = 10'000;

class ElementSearch {
  public:
    ElementSearch(const XmlFile& file, std::int32_t index)
        : input_(*file.input_items), tree_(input_.tree), items_(file.xfd->items) {
        add_step(index);
    }
    std::uint32_t run();

  private:
    // Each of these tells whether the outcome of step `at` is known by now.
    bool start(std::int32_t at);
    bool choose(std::int32_t at, std::uint32_t first);
    bool look_further(std::int32_t& at);
    bool take_enclosing(std::int32_t at, std::uint32_t element);
    bool finish(std::int32_t at, std::uint32_t element, const char* why);

    FittingElements count_fitting(std::uint32_t first, std::int32_t index);
    std::uint32_t find_child(std::uint32_t parent, std::int32_t index);

    const XfdItem& item_of(std::int32_t at) const { return items_[steps[at].item]; }
    void add_step(std::int32_t item) { steps[step_count_++] = {item, -1, 0, 0, false}; }
    bool reach(std::int32_t at);
    bool use_index();

    InputItems& input_;
    RecordTree& tree_;
    const XfdItem* items_;
    std::int32_t step_count_ = 0;
    int repeats_left_ = MOST_REPEATS;
};

bool ElementSearch::use_index() {
    return host_trace_on == 0 && make_record_index(input_.record_index, tree_);
}

bool ElementSearch::finish(std::int32_t at, std::uint32_t element, const char* why) {
    steps[at].result = element;
    steps[at].is_known = true;
    if (host_trace_on != 0) host_trace(-1, HOST_TRACE_SEARCH, "%s", why);
    return true;
}

bool ElementSearch::start(std::int32_t at) {
    const XfdItem& item = item_of(at);
    steps[at].next = at + 1;
    if (host_trace_on != 0)
        host_trace(1, HOST_TRACE_SEARCH, "find_element %d (%s)", steps[at].item, item.name);
    const std::uint32_t number = first_element_of(tree_, input_.names[steps[at].item]);
    if (item.level <= 1 && at > 0 && matches_by_place(tree_)) {
        return finish(at, 1, "Leaving, found the record's element");
    }
    if (number == 0) return finish(at, 0, "Leaving, no such element");
    const RecordElement& element = tree_.elements[number];
    if (element.next_of_name != 0) return choose(at, number);
    const bool moved = element.is_moved;
    if (item.dimensions() != 0) {
        return moved ? finish(at, 0, "Leaving, only one element, but already moved")
                     : finish(at, number, "Leaving, found an element");
    }
    return moved ? finish(at, 0, "Leaving, only one element, not a table, but already moved")
                 : finish(at, number, "Leaving, only one element, not a table");
}

bool ElementSearch::choose(std::int32_t at, std::uint32_t first) {
    number_elements(tree_);
    // The element of the group shows which of several groups is meant.
    const bool is_ambiguous = tree_.names.names[tree_.elements[first].name].is_ambiguous;
    if (is_ambiguous && matches_by_place(tree_)) return false;
    const FittingElements fitting = count_fitting(first, steps[at].item);
    if (fitting.count != 1) return false;
    return finish(at, fitting.any, "Leaving, returning pTarget because count == 1");
}

// Whether there are two or more makes no difference; the trace shows every comparison.
FittingElements ElementSearch::count_fitting(std::uint32_t first, std::int32_t index) {
    const XfdItem& item = items_[index];
    FittingElements found = {0, 0};
    int walked = 0;
    for (std::uint32_t at = first; at != 0; at = tree_.elements[at].next_of_name) {
        if (++walked > WALK_LIMIT && use_index()) {
            return find_fitting(input_, input_.names[index], item);
        }
        if (tree_.elements[at].is_moved || !same_array_signature(input_, at, item)) continue;
        found = {found.count + 1, at};
        if (found.count > 1 && host_trace_on == 0) break;
    }
    return found;
}

std::uint32_t ElementSearch::find_child(std::uint32_t parent, std::int32_t index) {
    const XfdItem& item = items_[index];
    int walked = 0;
    for (std::uint32_t child = tree_.elements[parent].first_child; child != 0;
         child = tree_.elements[child].next_sibling) {
        if (++walked > WALK_LIMIT && use_index()) {
            return find_fitting_child(input_, parent, item);
        }
        const char* const name = name_text(tree_.names, tree_.elements[child].name);
        if (!equal_ignoring_case(name, item.name)) continue;
        if (same_array_signature(input_, child, item)) return child;
    }
    return 0;
}

// `element`: of a group around the item; 0 when that group has none.
bool ElementSearch::take_enclosing(std::int32_t at, std::uint32_t element) {
    if (element == 0) return false;
    const std::uint32_t child = find_child(element, steps[at].item);
    return finish(at, child,
                  child != 0 ? "Leaving, found an element" : "Leaving, returning H_NULL");
}

bool ElementSearch::reach(std::int32_t at) {
    if (at < step_count_) return true;
    const std::int32_t group = input_.enclosing[steps[at - 1].item];
    if (group < 0) return false;
    add_step(group);
    return true;
}

// Looks at one more group for step `at`. When that group's element has to be found first, `at`
// becomes the group's step.
bool ElementSearch::look_further(std::int32_t& at) {
    const std::int32_t group = steps[at].next++;
    if (!reach(group)) return finish(at, 0, "Leaving, pTarget == NULL");
    // Nothing changes during a search, so what is known stays so.
    if (steps[group].is_known && (host_trace_on == 0 || repeats_left_-- <= 0)) {
        return take_enclosing(at, steps[group].result);
    }
    steps[group].caller = at;
    at = group;
    return start(at);
}

std::uint32_t ElementSearch::run() {
    std::int32_t at = 0;
    bool done = start(at);
    while (!done || steps[at].caller >= 0) {
        if (done) {
            const std::uint32_t element = steps[at].result;
            at = steps[at].caller;
            done = take_enclosing(at, element);
        } else {
            done = look_further(at);
        }
    }
    return steps[at].result;
}

// Most often there is one element of the name, or it is a simple table with few rows: then there is
// nothing to search, and in the next record of the same elements it is the same one. False when
// that is not so.
bool find_quickly(InputItems& input, std::int32_t index, const XfdItem& item,
                  std::uint32_t* result) {
    const RecordTree& tree = input.tree;
    const std::uint32_t first = first_element_of(tree, input.names[index]);
    *result = 0;
    if (tree.elements[first].next_of_name == 0) {
        input.known[index] = {tree.record, first, false, 0};
        if (!tree.elements[first].is_moved) *result = first;
        return true;
    }
    number_elements(input.tree);
    if (matches_by_place(tree) && tree.names.names[tree.elements[first].name].is_ambiguous) {
        return false;
    }
    if (item.dimensions() != 1) return false;
    int walked = 0;
    int fitting = 0;
    for (std::uint32_t at = first; at != 0; at = tree.elements[at].next_of_name) {
        const RecordElement& element = tree.elements[at];
        if (++walked > WALK_LIMIT || element.number_count != 1) return false;
        const std::uint32_t number = tree.elements[element.numbered].number;
        if (static_cast<int>(number) != item.subscripts[0]) continue;
        ++fitting;
        if (element.is_moved) continue;
        if (*result != 0) return false;
        *result = at;
    }
    if (fitting == 1 && *result != 0) input.known[index] = {tree.record, *result, false, 0};
    return *result != 0;
}

}  // namespace

std::uint32_t find_element(const XmlFile& file, std::int32_t index) {
    InputItems& input = *file.input_items;
    if (host_trace_on == 0) {
        const KnownElement& known = input.known[index];
        const bool is_known = known.record == input.tree.record;
        if (is_known && !input.tree.elements[known.element].is_moved) return known.element;
        std::uint32_t element = 0;
        if (find_quickly(input, index, file.xfd->items[index], &element)) return element;
    }
    return ElementSearch(file, index).run();
}
