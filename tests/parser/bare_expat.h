// What Expat alone makes of a document, in the form in which a tree of the module is shown too: the
// yardstick for everything that is read.
#pragma once

#include <string>
#include <string_view>

struct BareResult {
    int error = 0;            // Expat's code; what only shows when the input ends is no error
    bool after_root = false;  // the document element had ended when the error came
    std::string tree;         // as canonical_tree shows it
};

// Parses with handlers for elements and text only. `latin1`: texts are shown in ISO-8859-1.
BareResult parse_bare(std::string_view document, bool latin1);

// The tree below an element of the module, with names, attributes, text and nothing else. An empty
// text counts as none.
std::string canonical_tree(unsigned element);
