// Comparing names without regard to the case of ASCII letters. The C library's function would
// follow the locale that the process happens to have set.
#pragma once

constexpr char ascii_lower(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character + ('a' - 'A'))
                                                : character;
}

// True when a NUL-terminated text begins with another one, ignoring the case of ASCII letters.
constexpr bool begins_ignoring_case(const char* text, const char* prefix) {
    while (*prefix != '\0' && ascii_lower(*text) == ascii_lower(*prefix)) {
        ++text;
        ++prefix;
    }
    return *prefix == '\0';
}

// True when both NUL-terminated texts are equal, ignoring the case of ASCII letters.
constexpr bool equal_ignoring_case(const char* first, const char* second) {
    while (*first != '\0' && ascii_lower(*first) == ascii_lower(*second)) {
        ++first;
        ++second;
    }
    return ascii_lower(*first) == ascii_lower(*second);
}
