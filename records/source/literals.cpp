#include "records/source/literals.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <utility>

#include "records/source/text/text_case.h"

namespace records {

namespace {

constexpr std::array<std::pair<std::string_view, std::string_view>, 13> FIGURATIVES = {
    {{"ZERO", "ZERO"},
     {"ZEROS", "ZERO"},
     {"ZEROES", "ZERO"},
     {"SPACE", "SPACE"},
     {"SPACES", "SPACE"},
     {"HIGH-VALUE", "HIGH-VALUE"},
     {"HIGH-VALUES", "HIGH-VALUE"},
     {"LOW-VALUE", "LOW-VALUE"},
     {"LOW-VALUES", "LOW-VALUE"},
     {"QUOTE", "QUOTE"},
     {"QUOTES", "QUOTE"},
     {"NULL", "NULL"},
     {"NULLS", "NULL"}}};

std::string unquote(std::string_view body, char quote) {
    std::string out;
    for (std::size_t i = 0; i < body.size(); ++i) {
        out += body[i];
        if (body[i] == quote) ++i;
    }
    return out;
}

bool is_hex(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return is_digit(c) || (upper(c) >= 'A' && upper(c) <= 'F'); });
}

std::optional<Literal> read_hex_number(const std::string& digits, std::string& why) {
    std::uint64_t value = 0;
    const char* end = digits.data() + digits.size();
    const auto result = std::from_chars(digits.data(), end, value, 16);
    if (result.ec != std::errc() || result.ptr != end) {
        why = "expected 1 to 16 hexadecimal digits";
        return std::nullopt;
    }
    return Literal{Literal::Kind::number, std::to_string(value), {}};
}

}  // namespace

std::string_view figurative_name(std::string_view word) {
    for (const auto& [written, name] : FIGURATIVES) {
        if (same_word(word, written)) return name;
    }
    return {};
}

std::optional<Literal> read_quoted_literal(std::string_view text, std::string& why) {
    const std::size_t start = text.find_first_of("\"'");
    if (start == std::string_view::npos || text.size() < start + 2) {
        why = "expected a literal";
        return std::nullopt;
    }
    const std::string prefix = to_upper(text.substr(0, start));
    std::string value = unquote(text.substr(start + 1, text.size() - start - 2), text[start]);
    if (prefix == "H") return read_hex_number(value, why);
    if (prefix == "X" || prefix == "NX" || prefix == "BX") {
        if (value.empty() || value.size() % 2 != 0 || !is_hex(value)) {
            why = "expected pairs of hexadecimal digits";
            return std::nullopt;
        }
        return Literal{Literal::Kind::hex, to_upper(value), {}};
    }
    if (prefix == "Z") value += '\0';
    return Literal{Literal::Kind::text, std::move(value), {}};
}

std::optional<std::string> read_number(std::string_view text, bool decimal_point_is_comma) {
    const char point = decimal_point_is_comma ? ',' : '.';
    std::string out;
    if (text.starts_with('-')) out = "-";
    if (text.starts_with('-') || text.starts_with('+')) text.remove_prefix(1);
    const std::size_t exponent = std::min(text.find_first_of("Ee"), text.size());
    bool has_point = false;
    bool has_digit = false;
    for (const char c : text.substr(0, exponent)) {
        if (c == point && !has_point) {
            has_point = true;
            out += '.';
        } else if (is_digit(c)) {
            has_digit = true;
            out += c;
        } else {
            return std::nullopt;
        }
    }
    if (!has_digit) return std::nullopt;
    if (exponent == text.size()) return out;
    std::string_view power = text.substr(exponent + 1);
    if (power.starts_with('-') || power.starts_with('+')) power.remove_prefix(1);
    if (!is_integer(power) || power.size() > 4) return std::nullopt;
    return out + to_upper(text.substr(exponent));
}

}  // namespace records
