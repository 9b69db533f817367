// The strings that an element owns. Every change either happens as a whole or leaves the string as
// it was.
#pragma once

#include <cstddef>
#include <cstdint>

// A new string that holds a copy of a text, null counting as empty; 0 when memory is exhausted. It
// asks for just the room that the text needs, so that the host can keep short texts inside the
// string object. `description` as for host_alloc.
std::uint32_t new_text(const char* text, const char* description);
// The same for n bytes.
std::uint32_t new_text(const char* text, std::size_t n, const char* description);

// Puts n bytes in place of what `string` holds, which is made when it is 0; the text may be a part
// of it. False when memory is exhausted.
bool replace_text(std::uint32_t& string, const char* text, std::size_t n, const char* description);

// Releases a string and clears the handle; 0 is allowed.
void free_text(std::uint32_t& string);
