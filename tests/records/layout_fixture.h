// Descriptions compiled from copybook text, and their structures as text that can be compared.
#pragma once

#include <string>

#include "records/description.h"

namespace layout_tests {

// What compiling gave: a description or not, and what was said about it.
struct Compiled {
    std::optional<records::Description> description;
    std::string messages;
};

Compiled compile(const std::string& copybook, const records::LayoutOptions& options = {});
// The description of text that must compile.
records::Description described(const std::string& copybook,
                               const records::LayoutOptions& options = {});

// One line an item: indented name, offset+length, what it is (group, or type and digits.scale),
// and, where there are any, c and the condition's number, subscripts/occurs_max.
std::string items_text(const Xfd& xfd);

// Every byte of the structures that the module reads, so that equal texts are equal structures.
std::string module_view(const Xfd& xfd);

}  // namespace layout_tests
