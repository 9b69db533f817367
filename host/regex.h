// Regular expressions in Perl's syntax, matched on bytes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/export.h"

constexpr int HOST_REGEX_FLAGS = 2;  // a dot matches no line feed; anchors are the whole text's

// Compiles a pattern. Result: an expression handle, released with host_regex_free; 0 on failure.
HOST_API std::uint32_t host_regex_compile(const char* pattern, int flags);
// Searches `length` bytes of text for the first match. Result: a match handle, released with
// host_regex_match_free, with the byte range [*start, *end) stored; 0 when nothing matches (or the
// search gave up), and then nothing is stored.
HOST_API std::uint32_t host_regex_match(std::uint32_t expression, const char* text,
                                        std::size_t length, std::size_t* start, std::size_t* end);
HOST_API void host_regex_match_free(std::uint32_t match);
HOST_API void host_regex_free(std::uint32_t expression);
