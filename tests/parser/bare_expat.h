// What Expat alone makes of a document, in the form in which a tree of the module is shown too: the
// yardstick for everything that is read.
#pragma once

#include <string>
#include <string_view>

struct BareResult {
    int error = 0;  // Expat's code; what only shows at the end of the input is not an error
    bool after_root = false;  // the document element had ended when the error came
    // As canonical_tree shows it, without the text right before an error: how much of that arrives
    // depends, in Expat, on how the input is cut.
    std::string tree;
};

// Parses with handlers for the XML declaration, elements and text. The texts of a document that
// declares ISO-8859-1 are shown in that.
BareResult parse_bare(std::string_view document);

// The tree below an element of the module, with names, attributes, text and nothing else. An empty
// text counts as none; that of the element `broken_off`, if any, is left out.
std::string canonical_tree(unsigned element, unsigned broken_off = 0);
