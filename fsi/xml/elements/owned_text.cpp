#include "fsi/xml/elements/owned_text.h"

#include <algorithm>
#include <cstring>

#include "fsi/xml/elements/element.h"
#include "host/memory.h"

namespace {

constexpr std::uint64_t LARGEST_LENGTH = 0xFFFFFFFE;  // a longer text counts as exhausted memory

std::uint32_t room_of(const OwnedText& text) {
    return text.large_room > 0 ? text.large_room : OwnedText::SMALL_ROOM;
}

void set_length(OwnedText& text, std::size_t length) {
    text.length = static_cast<std::uint32_t>(length);
    text_of(text)[length] = '\0';
}

// Moves the first `kept` bytes to a larger block with n bytes after them. These may lie in the text
// as it was, so that goes last.
bool move_text(OwnedText& text, std::size_t kept, const char* bytes, std::size_t n,
               const char* description) {
    const std::uint64_t doubled = std::min(std::uint64_t{room_of(text)} * 2 + 1, LARGEST_LENGTH);
    const std::uint64_t room = std::max<std::uint64_t>(kept + n, doubled);
    auto* const larger = static_cast<char*>(
        host_alloc(room + 1, HOST_BLOCK_RAW, ELEMENTS_SOURCE, __LINE__, description, 0));
    if (!larger) return false;
    std::memcpy(larger, text_of(text), kept);
    std::memcpy(larger + kept, bytes, n);
    if (text.large_room > 0) host_free(text.large, ELEMENTS_SOURCE, __LINE__, 0);
    text.large = larger;
    text.large_room = static_cast<std::uint32_t>(room);
    set_length(text, kept + n);
    return true;
}

// Puts n bytes after the first `kept` ones.
bool put_text(OwnedText& text, std::size_t kept, const char* bytes, std::size_t n,
              const char* description) {
    if (n > LARGEST_LENGTH - kept) return false;
    if (kept + n > room_of(text)) return move_text(text, kept, bytes, n, description);
    if (n > 0) std::memmove(text_of(text) + kept, bytes, n);
    set_length(text, kept + n);
    return true;
}

}  // namespace

bool append_text(OwnedText& text, const char* bytes, std::size_t n, const char* description) {
    return put_text(text, text.length, bytes, n, description);
}

bool replace_text(OwnedText& text, const char* bytes, std::size_t n, const char* description) {
    return put_text(text, 0, bytes, n, description);
}

void shorten_text(OwnedText& text, std::uint32_t length) {
    set_length(text, length);
}

void keep_part(OwnedText& text, std::size_t start, std::size_t n) {
    char* const bytes = text_of(text);
    if (text.large_room > 0 && n <= OwnedText::SMALL_ROOM) {
        std::memcpy(text.small, bytes + start, n);
        text.large_room = 0;
        host_free(bytes, ELEMENTS_SOURCE, __LINE__, 0);
    } else {
        std::memmove(bytes, bytes + start, n);
    }
    set_length(text, n);
}

void free_text(OwnedText& text) {
    if (text.large_room > 0) host_free(text.large, ELEMENTS_SOURCE, __LINE__, 0);
    text = {};
}
