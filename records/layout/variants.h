// Record layouts and variants: which of the items that share a place are described, and when.
#pragma once

#include <memory>
#include <vector>

#include "records/layout/node.h"
#include "records/layout/resolve.h"

namespace records {

using Layouts = std::vector<std::unique_ptr<Node>>;

// Resolves the `when` of every item into its own test. Of items that redefine each other, those
// with a test are all described; the first without one is described when no test of the others
// holds, or always when there are no tests; further ones give no element.
void choose_variants(Node& record, const NameScope& scope, Diagnostics& diagnostics);

// Chooses among the records of a source in the same way, and orders them: a record layout without a
// test comes last, so that it is taken when no other is. Layouts that are not described have no
// name and follow the others.
//
// With several record layouts a layout is taken as a whole: the writer takes the first one of which
// all conditions hold. A layout that holds variants is therefore described once for each variant.
// Result: the number of layouts described.
std::size_t choose_layouts(Layouts& layouts, const NameScope& scope, const LayoutOptions& options,
                           Diagnostics& diagnostics);

// Numbers the tests and gives every field the number of the condition that it belongs to.
//
// On reading, the fields without condition are filled first; then the conditions are tested in the
// order of their numbers, each on the record as far as it has been filled, and the fields of those
// that hold are filled. So outer conditions get lower numbers than inner ones, and a field that a
// condition tests belongs to the innermost outer condition that comes before the test, or to none.
std::vector<Condition> number_conditions(const Layouts& layouts, std::size_t described,
                                         Diagnostics& diagnostics);

// Whether the test holds when an item of every record has a certain text: the left and the right
// side of the comparison.
bool asks_for_text(const Test& test);

}  // namespace records
