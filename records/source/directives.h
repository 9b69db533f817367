// Directives: comments that begin with "sxml:" and say more about the item that follows.
#pragma once

#include <optional>
#include <string>

#include "records/data_item.h"
#include "records/source/parse_context.h"
#include "records/source/tokens.h"

namespace records {

// The directives that stand before one data description entry.
struct Directives {
    std::optional<Expression> when;
    std::string xml_name;
    bool hex = false;
    bool hide = false;
    std::optional<Token> first;  // where they begin; absent when there are none
};

// Reads the directives at the cursor, if there are any, reporting mistakes in them.
Directives parse_directives(TokenCursor& cursor, ParseContext& context);

// Skips directives in places where none belongs, without a message.
void skip_directives(TokenCursor& cursor);

}  // namespace records
