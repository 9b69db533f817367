// The words of description files; see docs/description-files.md.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

#include "records/layout/model.h"

namespace records::json {

constexpr const char* FORMAT = "sxml record description";
constexpr int VERSION = 1;

template <typename Value, std::size_t size>
using Words = std::array<std::pair<std::string_view, Value>, size>;

constexpr Words<FieldType, 22> TYPES{
    {{"display_unsigned", DISPLAY_UNSIGNED},
     {"display_sign_trailing", DISPLAY_SIGN_TRAILING},
     {"display_sign_trailing_separate", DISPLAY_SIGN_TRAILING_SEPARATE},
     {"display_sign_leading", DISPLAY_SIGN_LEADING},
     {"display_sign_leading_separate", DISPLAY_SIGN_LEADING_SEPARATE},
     {"packed_signed", PACKED_SIGNED},
     {"packed_unsigned", PACKED_UNSIGNED},
     {"packed_no_sign", PACKED_NO_SIGN},
     {"binary_signed", BINARY_SIGNED},
     {"binary_unsigned", BINARY_UNSIGNED},
     {"native_signed", NATIVE_SIGNED},
     {"native_unsigned", NATIVE_UNSIGNED},
     {"float", FLOAT_NATIVE},
     {"float_hex", FLOAT_HEX},
     {"alphanumeric", ALPHANUMERIC},
     {"alphabetic", ALPHABETIC},
     {"edited", EDITED},
     {"justified", JUSTIFIED},
     {"opaque", OPAQUE},
     {"national", NATIONAL},
     {"encoded_text", ENCODED_TEXT},
     {"text", TEXT}}};

constexpr Words<FieldFlag, 8> FLAGS{{{"ebcdic_sign", FIELD_EBCDIC_SIGN},
                                     {"truncate", FIELD_TRUNCATE},
                                     {"ebcdic_text", FIELD_EBCDIC_TEXT},
                                     {"decimal_comma", FIELD_DECIMAL_COMMA},
                                     {"blank_when_zero", FIELD_BLANK_WHEN_ZERO},
                                     {"stored_point", FIELD_STORED_POINT},
                                     {"stored_comma", FIELD_STORED_COMMA},
                                     {"double_byte", FIELD_DOUBLE_BYTE}}};

constexpr Words<Expression::Relation, 6> RELATIONS{{{"=", Expression::Relation::equal},
                                                    {"<>", Expression::Relation::not_equal},
                                                    {"<", Expression::Relation::less},
                                                    {"<=", Expression::Relation::less_equal},
                                                    {">", Expression::Relation::greater},
                                                    {">=", Expression::Relation::greater_equal}}};

constexpr Words<Expression::Class, 2> CLASSES{
    {{"numeric", Expression::Class::numeric}, {"alphabetic", Expression::Class::alphabetic}}};

constexpr Words<Operand::Kind, 5> LITERALS{{{"text", Operand::Kind::text},
                                            {"number", Operand::Kind::number},
                                            {"hex", Operand::Kind::hex},
                                            {"figurative", Operand::Kind::figurative},
                                            {"all", Operand::Kind::all}}};

constexpr Words<Test::Kind, 2> CONNECTIVES{
    {{"and", Test::Kind::logical_and}, {"or", Test::Kind::logical_or}}};

constexpr Words<Test::Kind, 2> POSITIONS{
    {{"first", Test::Kind::is_first}, {"last", Test::Kind::is_last}}};

template <typename Value, std::size_t size>
constexpr std::string_view word_of(const Words<Value, size>& words, Value value) {
    for (const auto& [word, meaning] : words) {
        if (meaning == value) return word;
    }
    return {};
}

template <typename Value, std::size_t size>
constexpr std::optional<Value> meaning_of(const Words<Value, size>& words, std::string_view word) {
    for (const auto& [known, meaning] : words) {
        if (known == word) return meaning;
    }
    return std::nullopt;
}

}  // namespace records::json
