#include "fsi/xml/handlers/latin1.h"

#include <cstdint>
#include <cstring>

#include "fsi/xml/handlers/xml_parser.h"
#include "host/encoding.h"
#include "host/memory.h"

namespace {

// What is stored for a character.
char latin1_byte(std::uint32_t character) {
    const std::uint32_t low = character & 0xFF;
    const bool allowed = low >= 0x20 || low == '\t' || low == '\n' || low == '\r';
    return static_cast<char>(allowed ? low : std::uint32_t{'?'});
}

}  // namespace

std::size_t utf8_to_latin1(char* text) {
    const char* read = text;
    char* write = text;
    while (*read) *write++ = latin1_byte(host_next_char(&read));
    *write = '\0';
    return static_cast<std::size_t>(write - text);
}

char* latin1_copy(const char* text, std::size_t length, const char* description) {
    auto* copy = static_cast<char*>(
        host_alloc(length + 1, HOST_BLOCK_RAW, HANDLERS_SOURCE, __LINE__, description, 0));
    if (!copy) return nullptr;
    std::memcpy(copy, text, length);
    copy[length] = '\0';
    utf8_to_latin1(copy);
    return copy;
}
