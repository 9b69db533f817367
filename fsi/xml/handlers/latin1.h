// Texts of documents in ISO-8859-1: Expat reports UTF-8, the tree keeps one byte per character.
#pragma once

#include <cstddef>

// Converts a NUL-terminated UTF-8 text to ISO-8859-1 in place. A character above U+00FF keeps the
// low byte of its code, unless that byte could not stand in a document (a NUL would even cut the
// text): then it becomes a question mark. Result: the new length in bytes.
std::size_t utf8_to_latin1(char* text);

// A copy of the first `length` bytes of a UTF-8 text in ISO-8859-1, in a tracked block called
// `description` that the caller releases. Null when memory is exhausted.
char* latin1_copy(const char* text, std::size_t length, const char* description);
