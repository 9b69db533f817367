// What all parsers of one compilation share.
#pragma once

#include <string>
#include <unordered_map>
#include <utility>

#include "records/data_item.h"
#include "records/source/text/source_set.h"
#include "records/source/tokens.h"

namespace records {

struct ParseContext {
    const SourceSet& sources;
    Diagnostics& diagnostics;
    bool decimal_point_is_comma = false;
    char currency = '$';
    std::unordered_map<std::string, Literal> constants;  // level 78 and CONSTANT, by name

    void error(const Token& token, std::string message) {
        // The error is the unreadable text, not what was expected in its place.
        if (token.kind == WordKind::broken) message = token.text;
        diagnostics.error(sources.place(token.position), std::move(message));
    }
    void warning(const Token& token, std::string message) {
        diagnostics.warning(sources.place(token.position), std::move(message));
    }
};

}  // namespace records
