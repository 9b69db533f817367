#include "fsi/xml/elements/owned_text.h"

#include <cstring>

#include "fsi/xml/elements/element.h"
#include "host/strings.h"

std::uint32_t new_text(const char* text, std::size_t n, const char* description) {
    std::uint32_t string = host_string_new(description, n, ELEMENTS_SOURCE, __LINE__, 0);
    if (string == 0 || n == 0) return string;
    if (!host_string_append_n(string, text, n, ELEMENTS_SOURCE, __LINE__, 0)) free_text(string);
    return string;
}

std::uint32_t new_text(const char* text, const char* description) {
    return new_text(text, text ? std::strlen(text) : 0, description);
}

bool replace_text(std::uint32_t& string, const char* text, std::size_t n, const char* description) {
    if (n == 0 && string != 0) {
        host_string_clear(string);
        return true;
    }
    const std::uint32_t replacement = new_text(text, n, description);
    if (replacement == 0) return false;
    free_text(string);
    string = replacement;
    return true;
}

void free_text(std::uint32_t& string) {
    if (string != 0) host_string_free(string, ELEMENTS_SOURCE, __LINE__);
    string = 0;
}
