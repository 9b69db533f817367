// Literals and figurative constants, read from tokens.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "records/data_item.h"
#include "records/source/tokens.h"

namespace records {

// The name of a figurative constant in the form that Literal keeps; empty when it is not one.
std::string_view figurative_name(std::string_view word);

// The value of a literal token (quotes, prefix, doubled quotes); nothing, and why in `why`, when a
// prefix asks for digits that are not there.
std::optional<Literal> read_quoted_literal(std::string_view text, std::string& why);

// A numeric literal with a '.' as its point; nothing when the text is not a number.
std::optional<std::string> read_number(std::string_view text, bool decimal_point_is_comma);

}  // namespace records
