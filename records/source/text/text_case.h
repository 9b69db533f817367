// Letters and words of COBOL source text, without regard to case or locale.
#pragma once

#include <string>
#include <string_view>

namespace records {

constexpr char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
constexpr char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
constexpr bool is_digit(char c) {
    return c >= '0' && c <= '9';
}
constexpr bool is_letter(char c) {
    return upper(c) >= 'A' && upper(c) <= 'Z';
}
constexpr bool is_quote(char c) {
    return c == '"' || c == '\'';
}

inline std::string to_upper(std::string_view text) {
    std::string out(text);
    for (char& c : out) c = upper(c);
    return out;
}

inline std::string to_lower(std::string_view text) {
    std::string out(text);
    for (char& c : out) c = lower(c);
    return out;
}

constexpr bool same_word(std::string_view first, std::string_view second) {
    if (first.size() != second.size()) return false;
    for (std::size_t i = 0; i < first.size(); ++i) {
        if (upper(first[i]) != upper(second[i])) return false;
    }
    return true;
}

constexpr bool starts_with_word(std::string_view text, std::string_view prefix) {
    return text.size() >= prefix.size() && same_word(text.substr(0, prefix.size()), prefix);
}

constexpr std::string_view without_leading_blanks(std::string_view text) {
    const std::size_t start = text.find_first_not_of(' ');
    return start == std::string_view::npos ? std::string_view() : text.substr(start);
}

}  // namespace records
