/* A piece of text with its encoding. Plain C, so that callers of the XML API can use it too. */
#ifndef SXML_TEXT_SPAN_H
#define SXML_TEXT_SPAN_H

#include <stdint.h>

/* The bytes belong to whoever made the span. */
struct HostTextSpan {
    const char* text;
    uint64_t length;  /* bytes */
    int32_t encoding; /* host encoding code */
};

#endif
