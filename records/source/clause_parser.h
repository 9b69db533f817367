// The clauses of a data description entry.
#pragma once

#include <bitset>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "records/data_item.h"
#include "records/source/parse_context.h"
#include "records/source/tokens.h"

namespace records {

// What a word at the start of a clause says.
enum class Clause : std::uint8_t {
    none,
    picture,
    redefines,
    usage,
    usage_word,  // a usage without the word USAGE
    sign,
    occurs,
    synchronized,
    justified,
    blank,
    value,
    without_effect,  // on the layout
    is               // a noise word
};

Clause clause_of(const Token& token);

// The usage that a word names; nothing when it names none.
std::optional<Usage> usage_of(const Token& token);

// Is the word a usage that some compilers know, or looks like one, but has no layout here?
bool is_unsupported_usage(const Token& token);

// Reads clauses into an item until something that is not a clause.
class ClauseParser {
  public:
    ClauseParser(TokenCursor& cursor, ParseContext& context, DataItem& item)
        : cursor_(cursor), context_(context), item_(item) {}

    // Stands after the entry's period then, or where the next entry seems to begin.
    void parse();

  private:
    void parse_clause(Clause clause);
    void check_first(Clause clause, const Token& start);
    void parse_picture();
    void parse_redefines();
    void parse_usage();
    void parse_usage_word();
    void parse_unsupported_usage();
    void parse_binary_sign();
    void parse_sign();
    void parse_occurs();
    void parse_occurs_count();
    bool parse_count(int& count);
    void parse_occurs_phrases();
    void parse_depending_on();
    void skip_names();
    void parse_blank();
    void parse_value();
    void skip_unknown();

    void fail(const std::string& expected) {
        context_.error(cursor_.peek(),
                       "expected " + expected + ", found " + quoted(cursor_.peek()));
        failed_ = true;
    }

    TokenCursor& cursor_;
    ParseContext& context_;
    DataItem& item_;
    std::bitset<16> seen_;
    bool failed_ = false;  // the rest of the entry is skipped
};

}  // namespace records
