// Text encodings: their codes, the walk over characters, and conversion of names.
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/export.h"
#include "sxml/text_span.h"

// Host encoding codes. Codes above 7 stand for encodings that host_encoding_code found by name.
enum HostEncoding : std::int32_t {
    HOST_ENCODING_UNKNOWN = -1,
    HOST_ENCODING_NONE = 0,      // bytes as they are
    HOST_ENCODING_NATIONAL = 1,  // character fields of type codes 24 to 29
    HOST_ENCODING_UTF8 = 2,
    HOST_ENCODING_UTF16LE = 3,
    HOST_ENCODING_UTF32LE = 4,  // 32-bit units, little-endian
    HOST_ENCODING_UTF16BE = 5,
    HOST_ENCODING_UTF32BE = 6,  // 32-bit units, big-endian
    HOST_ENCODING_LATIN1 = 7    // ISO-8859-1
};

// The code of an encoding's name, compared without regard to letter case; HOST_ENCODING_UNKNOWN
// when the name is not known. Names known to the system's converter get codes above the fixed ones.
HOST_API std::int32_t host_encoding_code(const char* name);

// Width in bytes (1, 2 or 4) of one code unit. Entry [code + 1] is for the codes -1 to 7.
// NOLINTNEXTLINE(bugprone-dynamic-static-initializers): declared here, initialised by the host
HOST_DATA const std::int32_t host_encoding_unit_width[9];

// Width of one code unit of any code; 1 for codes beyond the table.
inline std::int32_t host_unit_width(std::int32_t code) {
    return code >= HOST_ENCODING_UNKNOWN && code <= HOST_ENCODING_LATIN1
               ? host_encoding_unit_width[code + 1]
               : 1;
}

// Length in bytes, at least 1, of the character that starts at `text`, told from its first code
// unit alone (nothing after that unit is read): the caller keeps it within its own bounds. A unit
// that cannot start a character counts as a character of one unit. Where code units are bytes, a
// byte below 0x80 is always a character of its own: callers need not ask about such bytes.
HOST_API std::size_t host_char_length(std::int32_t code, const void* text);

// First occurrence of the character `character` (an ASCII code) in the span, walking whole
// characters in the span's encoding; null when there is none.
HOST_API const char* host_span_find_char(const HostTextSpan* span, int character);

// The byte range [*start, *end) of the span that is left when XML white space (space, tab, carriage
// return, line feed) at both ends is dropped, in the span's encoding. All white space: an empty
// range.
HOST_API void host_trim_span(const HostTextSpan* span, std::uint64_t* start, std::uint64_t* end);

// The encoding of the start of a document (a span with code 0), from its byte order mark or the
// first bytes of an XML declaration or start tag; HOST_ENCODING_UTF8 when nothing else shows.
HOST_API std::int32_t host_detect_encoding(const HostTextSpan* span);

// Decodes one UTF-8 character of a NUL-terminated text and advances the cursor past it, never past
// the NUL. Broken input gives U+FFFD and advances by at least one byte; at the NUL the result is 0
// and the cursor stays.
HOST_API std::uint32_t host_next_char(const char** cursor);

// Kinds of name conversion.
enum HostNameConversion : int {
    HOST_NAME_LOWER_CASE = 4,  // ASCII letters to lower case; other characters stay
    HOST_NAME_UNDERSCORES = 6  // hyphens to underscores
};

// Converts a NUL-terminated name in place. `limit`: -3 for the whole name, else at most that many
// bytes are looked at. Other kinds change nothing.
HOST_API void host_convert_case(char* name, int limit, int kind);
