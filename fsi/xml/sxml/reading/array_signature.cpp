#include "fsi/xml/sxml/reading/array_signature.h"

#include <algorithm>
#include <cstdio>

#include "fsi/xml/sxml/settings.h"
#include "host/trace.h"
#include "sxml/xml_api.h"

namespace {

// A list of numbers for the trace: "(1,2)", or nothing when there are none.
class NumberList {
  public:
    template <typename Number>
    NumberList(const Number* numbers, int count) {
        text_[0] = '\0';
        std::size_t length = 0;
        for (int i = 0; i < count; ++i) {
            length += static_cast<std::size_t>(
                std::snprintf(text_ + length, sizeof text_ - length, "%c%d", i == 0 ? '(' : ',',
                              static_cast<std::int32_t>(numbers[i])));
        }
        if (count > 0) std::snprintf(text_ + length, sizeof text_ - length, ")");
    }
    const char* text() const { return text_; }

  private:
    // Separator, sign and ten digits for each number, the closing bracket and the NUL.
    char text_[12 * XML_INDEX_LIMIT + 2];
};
static_assert(XML_INDEX_LIMIT >= XFD_MAX_DIMENSIONS);

// The numbers of an element. None has more than elements can have.
struct Numbers {
    std::uint32_t values[XML_INDEX_LIMIT];
    int count;
};

void trace_comparison(const RecordTree& tree, std::uint32_t element, const Numbers& found,
                      const XfdItem& item) {
    const NumberList numbers(found.values, found.count);
    const NumberList subscripts(item.subscripts, item.dimensions());
    host_trace(1, HOST_TRACE_SUBSCRIPTS, "same_array_signature for items %s%s and %s%s",
               name_text(tree.names, tree.elements[element].name), numbers.text(), item.name,
               subscripts.text());
}

bool leave(bool result, const char* why) {
    if (host_trace_on != 0) host_trace(-1, HOST_TRACE_SUBSCRIPTS, "%s", why);
    return result;
}

bool equals(std::int16_t subscript, std::uint32_t number) {
    return subscript >= 0 && static_cast<std::uint32_t>(subscript) == number;
}

bool fits_without_numbers(const XfdItem& item) {
    const int dimensions = item.dimensions();
    if (dimensions == 0) return leave(true, "Leaving, TRUE, neither an array");
    const bool all_first = std::all_of(item.subscripts, item.subscripts + dimensions,
                                       [](std::int16_t subscript) { return subscript <= 1; });
    if (!all_first) return leave(false, "Leaving, FALSE, only one an array");
    return leave(true, "Leaving, TRUE, XFD element an array, XML element not, but indices all 1");
}

// Fewer numbers than subscripts: a table level with a single element gave no number.
bool fits_with_gaps(const Numbers& numbers, const XfdItem& item) {
    int matched = 0;
    for (int i = 0; i < item.dimensions(); ++i) {
        if (matched < numbers.count && equals(item.subscripts[i], numbers.values[matched])) {
            ++matched;
        } else if (item.subscripts[i] != 1) {
            return leave(false, "Leaving, FALSE 2");
        }
    }
    // The trace has no line for numbers that are left over.
    return matched == numbers.count && leave(true, "Leaving, TRUE");
}

constexpr std::uint32_t RECORD_ELEMENT = 1;

enum class Place : std::uint8_t { own, other_entry, other_item, unknown };

// Whether the element, which is not in the item's groups, is in those of an item of the same name.
bool is_of_another_item(const InputItems& input, const RecordElement& element, std::int32_t group) {
    const RecordName* const names = input.tree.names.names;
    if (!names[element.name].is_ambiguous) return false;
    const bool is_in_record = group < 0 || input.items[group].level <= 1;
    if (element.parent <= RECORD_ELEMENT) return !is_in_record && names[element.name].is_top;
    const std::uint32_t around = input.tree.elements[element.parent].name;
    return names[around].is_group && (is_in_record || input.names[group] != around);
}

// Compares the names and numbers of an element and what is around it with those of an item, from
// the inside out.
Place place_of(const InputItems& input, std::uint32_t number, const XfdItem& item) {
    if (number == RECORD_ELEMENT) return item.level <= 1 ? Place::own : Place::other_item;
    bool is_entry = true;
    auto index = static_cast<std::int32_t>(&item - input.items);
    for (;;) {
        const RecordElement& element = input.tree.elements[number];
        const std::int32_t group = input.enclosing[index];
        const int outer = group < 0 ? 0 : input.items[group].dimensions();
        const XfdItem& at = input.items[index];
        const int subscript = at.dimensions() > outer ? at.subscripts[outer] : 0;
        const auto wanted = static_cast<std::uint32_t>(subscript);
        is_entry = is_entry && (element.number != 0 ? element.number : wanted != 0) == wanted;
        const bool is_last = group < 0 || input.items[group].level <= 1;
        const bool is_in_record = element.parent <= RECORD_ELEMENT;
        if (is_in_record && is_last) return is_entry ? Place::own : Place::other_entry;
        if (is_in_record || is_last ||
            input.tree.elements[element.parent].name != input.names[group]) {
            return is_of_another_item(input, element, group) ? Place::other_item : Place::unknown;
        }
        number = element.parent;
        index = group;
    }
}

}  // namespace

bool matches_exactly(const RecordTree& tree) {
    return tree.table_match != nullptr ? *tree.table_match != HOST_TABLES_LOOSE
                                       : settings::exact_table_match();
}

bool matches_by_place(const RecordTree& tree) {
    return tree.table_match != nullptr && *tree.table_match == HOST_TABLES_BY_PLACE;
}

bool same_array_signature(const InputItems& input, std::uint32_t element, const XfdItem& item) {
    const RecordTree& tree = input.tree;
    if (matches_by_place(tree)) {
        const Place place = place_of(input, element, item);
        if (place != Place::unknown) return place == Place::own;
    }
    const int dimensions = item.dimensions();
    const RecordElement& found = tree.elements[element];
    if (host_trace_on == 0 && dimensions == 1 && found.number_count == 1) {
        // A simple table: there is nothing to gather.
        return equals(item.subscripts[0], tree.elements[found.numbered].number);
    }
    Numbers numbers;
    numbers.count = occurrence_numbers(tree, element, numbers.values);
    if (host_trace_on != 0) trace_comparison(tree, element, numbers, item);
    if (numbers.count == 0) return fits_without_numbers(item);
    if (dimensions == numbers.count) {
        const bool same =
            std::equal(item.subscripts, item.subscripts + dimensions, numbers.values, equals);
        return leave(same, same ? "Leaving, TRUE" : "Leaving, FALSE 1");
    }
    if (matches_exactly(tree)) return leave(false, "Leaving, exact match required");
    if (dimensions < numbers.count) return leave(false, "Leaving, FALSE - too many XML indices");
    return fits_with_gaps(numbers, item);
}
