// The words that begin clauses.
#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "records/source/clause_parser.h"

namespace records {

namespace {

constexpr std::array<std::pair<std::string_view, Clause>, 22> CLAUSE_WORDS = {
    {{"PIC", Clause::picture},
     {"PICTURE", Clause::picture},
     {"REDEFINES", Clause::redefines},
     {"USAGE", Clause::usage},
     {"SIGN", Clause::sign},
     {"LEADING", Clause::sign},
     {"TRAILING", Clause::sign},
     {"OCCURS", Clause::occurs},
     {"SYNCHRONIZED", Clause::synchronized},
     {"SYNCHRONISED", Clause::synchronized},
     {"SYNC", Clause::synchronized},
     {"JUSTIFIED", Clause::justified},
     {"JUST", Clause::justified},
     {"BLANK", Clause::blank},
     {"VALUE", Clause::value},
     {"VALUES", Clause::value},
     {"EXTERNAL", Clause::without_effect},
     {"GLOBAL", Clause::without_effect},
     {"VOLATILE", Clause::without_effect},
     {"BASED", Clause::without_effect},
     {"IS", Clause::is},
     {"ARE", Clause::is}}};

constexpr std::array<std::pair<std::string_view, Usage>, 48> USAGE_WORDS = {
    {{"DISPLAY", Usage::display},
     {"BINARY", Usage::binary},
     {"COMP", Usage::binary},
     {"COMPUTATIONAL", Usage::binary},
     {"COMP-1", Usage::comp_1},
     {"COMPUTATIONAL-1", Usage::comp_1},
     {"COMP-2", Usage::comp_2},
     {"COMPUTATIONAL-2", Usage::comp_2},
     {"COMP-3", Usage::comp_3},
     {"COMPUTATIONAL-3", Usage::comp_3},
     {"PACKED-DECIMAL", Usage::comp_3},
     {"COMP-4", Usage::binary},
     {"COMPUTATIONAL-4", Usage::binary},
     {"COMP-5", Usage::comp_5},
     {"COMPUTATIONAL-5", Usage::comp_5},
     {"COMP-6", Usage::comp_6},
     {"COMPUTATIONAL-6", Usage::comp_6},
     {"COMP-N", Usage::comp_5},
     {"COMPUTATIONAL-N", Usage::comp_5},
     {"COMP-X", Usage::comp_x},
     {"COMPUTATIONAL-X", Usage::comp_x},
     {"NATIONAL", Usage::national},
     {"DISPLAY-1", Usage::double_byte},
     {"INDEX", Usage::index},
     {"POINTER", Usage::pointer},
     {"PROCEDURE-POINTER", Usage::pointer},
     {"FUNCTION-POINTER", Usage::pointer},
     {"PROGRAM-POINTER", Usage::pointer},
     {"BINARY-CHAR", Usage::binary_char},
     {"BINARY-SHORT", Usage::binary_short},
     {"BINARY-INT", Usage::binary_long},
     {"BINARY-LONG", Usage::binary_long},
     {"BINARY-DOUBLE", Usage::binary_double},
     {"BINARY-LONG-LONG", Usage::binary_double},
     {"SIGNED-SHORT", Usage::binary_short},
     {"SIGNED-INT", Usage::binary_long},
     {"SIGNED-LONG", Usage::binary_double},
     {"UNSIGNED-SHORT", Usage::binary_short},
     {"UNSIGNED-INT", Usage::binary_long},
     {"UNSIGNED-LONG", Usage::binary_double},
     {"FLOAT-SHORT", Usage::float_short},
     {"FLOAT-LONG", Usage::float_long},
     {"FLOAT", Usage::float_short},
     {"DOUBLE", Usage::float_long},
     {"FLOAT-BINARY-32", Usage::float_short},
     {"FLOAT-BINARY-64", Usage::float_long},
     {"BINARY-C-LONG", Usage::binary_double},
     {"UNSIGNED-CHAR", Usage::binary_char}}};

}  // namespace

std::optional<Usage> usage_of(const Token& token) {
    if (token.kind != WordKind::word) return std::nullopt;
    const auto* found = std::find_if(USAGE_WORDS.begin(), USAGE_WORDS.end(),
                                     [&](const auto& word) { return word.first == token.text; });
    if (found == USAGE_WORDS.end()) return std::nullopt;
    return found->second;
}

bool is_unsupported_usage(const Token& token) {
    if (token.kind != WordKind::word || usage_of(token)) return false;
    const std::string_view word = token.text;
    const auto numbered = [&](std::string_view family) {
        return word.size() > family.size() && word.starts_with(family);
    };
    return word == "OBJECT" || word == "HANDLE" || numbered("COMP-") ||
           numbered("COMPUTATIONAL-") || numbered("FLOAT-") || numbered("BINARY-");
}

Clause clause_of(const Token& token) {
    if (token.kind != WordKind::word) return Clause::none;
    const auto* found = std::find_if(CLAUSE_WORDS.begin(), CLAUSE_WORDS.end(),
                                     [&](const auto& word) { return word.first == token.text; });
    if (found != CLAUSE_WORDS.end()) return found->second;
    return usage_of(token) ? Clause::usage_word : Clause::none;
}

}  // namespace records
