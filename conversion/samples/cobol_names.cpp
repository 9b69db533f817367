#include "conversion/samples/cobol_names.h"

#include "conversion/samples/reserved_words.h"

namespace conversion {

namespace {

constexpr std::size_t LONGEST = 30;

bool is_lower(char c) {
    return c >= 'a' && c <= 'z';
}
bool is_upper(char c) {
    return c >= 'A' && c <= 'Z';
}
bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

std::string cut(std::string name, std::size_t size) {
    if (name.size() > size) name.resize(size);
    while (name.ends_with('-')) name.pop_back();
    return name;
}

// Letters in upper case, digits, and hyphens for all others; a hyphen where words meet.
std::string words_of(std::string_view element) {
    std::string name;
    for (std::size_t i = 0; i < element.size(); ++i) {
        const char c = element[i];
        const bool begins_word = i > 0 && is_upper(c) && is_lower(element[i - 1]);
        const bool is_kept = is_lower(c) || is_upper(c) || is_digit(c);
        if ((begins_word || !is_kept) && !name.empty() && !name.ends_with('-')) name += '-';
        if (is_kept) name += is_lower(c) ? static_cast<char>(c - 'a' + 'A') : c;
    }
    while (name.ends_with('-')) name.pop_back();
    const bool has_letter = name.find_first_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ") != name.npos;
    return has_letter ? name : name.empty() ? "ITEM" : "ITEM-" + name;
}

}  // namespace

bool CobolNames::take(const std::string& name) {
    return !is_reserved_word(name) && taken_.insert(name).second;
}

std::string CobolNames::add(std::string_view element, std::string_view around) {
    const std::string own = words_of(element);
    std::string name = cut(own, LONGEST);
    if (take(name)) return name;
    name = cut(around.empty() ? own + "-RECORD" : std::string(around) + "-" + own, LONGEST);
    if (take(name)) return name;
    int& number = numbers_.try_emplace(name, 1).first->second;
    for (;;) {
        const std::string suffix = "-" + std::to_string(++number);
        std::string numbered = cut(name, LONGEST - suffix.size()) + suffix;
        if (take(numbered)) return numbered;
    }
}

}  // namespace conversion
