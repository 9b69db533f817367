// String objects behind 32-bit handles. A string object holds one growable text and a sequence of
// entries, which are kept apart: appending changes the text only, adding an entry the entries only.
// Short texts live inside the object.
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/export.h"

// Makes an empty string object with room for `capacity` bytes. Result: its handle, owned by the
// caller; 0 when memory is exhausted.
HOST_API std::uint32_t host_string_new(const char* description, std::size_t capacity,
                                       const char* source, int line, int flags);
// Releases a string object with its entries. 0 and stale handles are left alone.
HOST_API void host_string_free(std::uint32_t string, const char* source, int line);

// Append a NUL-terminated text, or n bytes. Result: 1; 0 when memory is exhausted (or the handle is
// not a string), and then the string is unchanged. The text may be a part of the string itself.
HOST_API int host_string_append(std::uint32_t string, const char* text, const char* source,
                                int line, int flags);
HOST_API int host_string_append_n(std::uint32_t string, const char* text, std::size_t n,
                                  const char* source, int line, int flags);
// Removes the last n bytes; all of them when there are fewer.
HOST_API void host_string_chop(std::uint32_t string, std::size_t n);
// Makes the text and the entries empty; the object stays.
HOST_API void host_string_clear(std::uint32_t string);
// The bytes with a NUL after them, valid and in place until the string is changed. An object
// without text but with entries gives its entries' texts one after the other, each followed by a
// line feed except the last. Never null for a live string; null for a handle that is not one.
HOST_API const char* host_string_text(std::uint32_t string);
// Length in bytes of what host_string_text gives.
HOST_API std::size_t host_string_length(std::uint32_t string);
// 0 when both texts are equal, byte for byte, else another value.
HOST_API int host_string_compare(std::uint32_t first, std::uint32_t second);

// Adds a text as one more entry. Result: 1, or 0 when memory is exhausted.
HOST_API int host_string_add_entry(std::uint32_t string, const char* text, const char* source,
                                   int line);
// Adds the other string's text as one further entry (nothing when it is empty). Result as above.
HOST_API int host_string_add_entries(std::uint32_t string, std::uint32_t other, const char* source,
                                     int line);
// Number of entries. A string that only has appended text counts as one entry, an empty one as
// none.
HOST_API std::size_t host_string_entry_count(std::uint32_t string);
// Entry `index`, from 0; null out of range. A string that only has appended text gives it as entry
// 0; one that has both gives its entries first and the appended text last.
HOST_API const char* host_string_entry(std::uint32_t string, std::size_t index);
