// Data description entries: level number, name and clauses up to the period.
#pragma once

#include <memory>
#include <optional>

#include "records/data_item.h"
#include "records/source/directives.h"
#include "records/source/parse_context.h"
#include "records/source/tokens.h"

namespace records {

struct Entry {
    int level = 0;
    Token start;                             // the level number
    std::unique_ptr<DataItem> item;          // levels 01 to 49 and 77
    std::optional<ConditionName> condition;  // level 88
};

// True where a data description entry seems to begin although no period came before: a level number
// at the start of a line with a word after it.
bool looks_like_entry(const TokenCursor& cursor);

// Reads the entry at the cursor and leaves the cursor after it, also after mistakes. Nothing for
// entries that describe no data (levels 66 and 78, constants) and for what is not an entry at all.
std::optional<Entry> parse_entry(TokenCursor& cursor, ParseContext& context);

// Level number at the token: 1 to 49, 66, 77, 78, 88; 0 when it is not a level number.
int level_number(const Token& token);

}  // namespace records
