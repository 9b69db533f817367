// The comment filter: the banner line of documents that the document writer wrote is dropped from
// comments, so that reading and writing a document again does not pile banners up.
#pragma once

#include <cstddef>
#include <cstdint>

// `length` bytes of a comment without its banner lines. Result: a string that the caller frees,
// empty when nothing but banner lines was there; 0 when the filter cannot be applied.
std::uint32_t filter_comment(const char* text, std::size_t length);
