// Literals of VALUE clauses and the values of constants.
#pragma once

#include <optional>
#include <vector>

#include "records/data_item.h"
#include "records/source/parse_context.h"
#include "records/source/tokens.h"

namespace records {

// Reads one literal, figurative constant, ALL literal or constant name, with "&" between literals
// that are put together. Nothing, and no message, when the cursor is at none of these.
std::optional<Literal> parse_literal(TokenCursor& cursor, ParseContext& context);

// The values of a level 88 entry, from VALUE on; mistakes are reported.
std::vector<LiteralRange> parse_condition_values(TokenCursor& cursor, ParseContext& context);

// Defines the constant when a level 78 or CONSTANT entry begins at the cursor (which is left
// somewhere in it). True when it was one.
bool define_constant(TokenCursor& cursor, ParseContext& context);

}  // namespace records
