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
    // The trace knows no line for numbers that are left over.
    return matched == numbers.count && leave(true, "Leaving, TRUE");
}

}  // namespace

bool matches_exactly(const RecordTree& tree) {
    return tree.exact_match != nullptr ? *tree.exact_match != 0 : settings::exact_table_match();
}

bool same_array_signature(const RecordTree& tree, std::uint32_t element, const XfdItem& item) {
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
