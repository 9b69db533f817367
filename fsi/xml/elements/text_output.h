// The three writers through which every piece of XML text reaches a file: a span of text, a line
// end, and a NUL-terminated piece of markup. They report no errors: a failed write only lowers the
// count returned, and the stream remembers it for the embedding program.
#pragma once

#include <cstdint>

#include "host/encoding.h"
#include "host/files.h"

using XmlTextSpan = HostTextSpan;

// Flags of xml_write_text and xml_write_string; they may be combined.
constexpr std::uint8_t XML_TEXT_ESCAPE = 1;  // markup characters are written as entities
constexpr std::uint8_t XML_TEXT_TRIM = 2;    // together with XML_TEXT_ESCAPE: white space at both
                                             // ends is dropped first

// `output` is an open stream, `output_encoding` the host encoding code of the file being written:
// it decides whether a raw text ends at a NUL byte (codes -1, 0 and 2) and nothing else. Texts stay
// the caller's.
extern "C" {
// Writes a span. Without XML_TEXT_ESCAPE its bytes go out as they stand; with it, markup characters
// of the span's own encoding become entities, control bytes of a byte encoding character
// references, and a text of a byte encoding ends at its first NUL. An escaped span of a code that
// is not one of the fixed ones gives nothing.
// Result: items written (bytes; code units for runs of 16 and 32-bit text); 0 for a null span.
std::uint64_t xml_write_text(HostStream* output, std::int32_t output_encoding,
                             const XmlTextSpan* span, std::uint8_t flags);

// Writes a carriage return and a line feed. Result: bytes written.
std::uint64_t xml_write_newline(HostStream* output, std::int32_t output_encoding);

// Writes a NUL-terminated text, each line feed in it as a line end. Result: bytes written.
std::uint64_t xml_write_string(HostStream* output, std::int32_t output_encoding, const char* text,
                               std::uint8_t flags);
}
