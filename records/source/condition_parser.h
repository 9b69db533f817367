// Conditions of directives.
#pragma once

#include <optional>
#include <string>

#include "records/data_item.h"
#include "records/source/parse_context.h"
#include "records/source/tokens.h"

namespace records {

// Reads a condition that starts at the cursor, inside a directive, and leaves the cursor after it.
// It goes on in the next directive line while it is not complete, or when that line begins with AND
// or OR. After a mistake it is reported and nothing is given.
std::optional<Expression> parse_condition(TokenCursor& cursor, ParseContext& context);

}  // namespace records
