// Checks the list of ordinals against the documented prototypes.
#include <initializer_list>
#include <type_traits>

#include "sxml/xml_api.h"

namespace {

// NOLINTBEGIN(bugprone-macro-parentheses): types cannot stand in parentheses
#define XML_ORDINAL(number, name, result, parameters) \
    static_assert(std::is_same_v<decltype(&(name)), result(*) parameters>);
#include "sxml/ordinals.def"
#undef XML_ORDINAL
// NOLINTEND(bugprone-macro-parentheses)

constexpr bool ascending_and_free_ones_left() {
    int last = 0;
    for (const int number : {
#define XML_ORDINAL(number, name, result, parameters) number,
#include "sxml/ordinals.def"
#undef XML_ORDINAL
         }) {
        if (number <= last || number == 44 || number == 66 || number == 70) return false;
        last = number;
    }
    return true;
}
static_assert(ascending_and_free_ones_left());

}  // namespace
