// Texts that an element owns. Every change either happens as a whole or leaves the text as it was.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

// A text with a NUL after it: short ones lie in the object, others in a tracked block. Zero-filled,
// it is empty. It must not be copied.
struct OwnedText {
    static constexpr std::uint32_t SMALL_ROOM = 15;

    union {
        char small[SMALL_ROOM + 1];
        char* large;
    };
    std::uint32_t length;
    std::uint32_t large_room;  // without the NUL; 0 while the text is small
};

inline char* text_of(OwnedText& text) {
    return text.large_room > 0 ? text.large : text.small;
}
inline const char* text_of(const OwnedText& text) {
    return text.large_room > 0 ? text.large : text.small;
}
inline std::string_view view_of(const OwnedText& text) {
    return {text_of(text), text.length};
}

// Append n bytes, or put them in place of the text; they may be a part of it. False when memory is
// exhausted. `description` as for host_alloc.
bool append_text(OwnedText& text, const char* bytes, std::size_t n, const char* description);
bool replace_text(OwnedText& text, const char* bytes, std::size_t n, const char* description);

// Cuts a text that is at least `length` bytes long; it stays in place.
void shorten_text(OwnedText& text, std::uint32_t length);

// Leaves n bytes from `start` of the text, and of its room no more than that.
void keep_part(OwnedText& text, std::size_t start, std::size_t n);

// Releases what the text holds; it is empty then.
void free_text(OwnedText& text);
