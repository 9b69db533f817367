// Type codes of record fields and what the conversion keeps in a descriptor's `extra` bytes.
// The module only tells numeric from character codes (is_numeric_type); the rest is ours.
#pragma once

#include <cstdint>
#include <cstring>

#include "host/record_description.h"

namespace records {

enum FieldType : std::int16_t {
    TEXT = 0,  // the text form that numbers are converted to and from
    DISPLAY_UNSIGNED = 1,
    DISPLAY_SIGN_TRAILING = 2,           // overpunched on the last digit
    DISPLAY_SIGN_TRAILING_SEPARATE = 3,  // + or - after the digits
    DISPLAY_SIGN_LEADING = 4,            // overpunched on the first digit
    DISPLAY_SIGN_LEADING_SEPARATE = 5,   // + or - before the digits
    PACKED_SIGNED = 6,                   // COMP-3, sign nibble C or D
    PACKED_UNSIGNED = 7,                 // COMP-3, sign nibble F
    PACKED_NO_SIGN = 8,                  // COMP-6: two digits a byte, no sign nibble
    BINARY_SIGNED = 9,                   // big-endian two's complement
    BINARY_UNSIGNED = 10,                // big-endian
    NATIVE_SIGNED = 11,                  // little-endian two's complement (COMP-5, INDEX, BINARY-x)
    NATIVE_UNSIGNED = 12,                // little-endian
    FLOAT_NATIVE = 13,                   // IEEE 754, 4 or 8 bytes by length
    FLOAT_HEX = 14,                      // hexadecimal floating point, 4 or 8 bytes, big-endian
    ALPHANUMERIC = 15,
    ALPHABETIC = 16,
    EDITED = 17,       // numeric edited or alphanumeric edited: characters
    JUSTIFIED = 18,    // alphanumeric, JUSTIFIED RIGHT
    OPAQUE = 19,       // POINTER and the like; format 2
    NATIONAL = 24,     // one byte per code unit as far as the module knows
    ENCODED_TEXT = 40  // characters in XfdConventions::field_encoding
};

// Where the characters of a JUSTIFIED or edited field stand that are not blanks; all 0: at its
// start.
struct FieldEdges {
    std::uint8_t is_right;  // they end at the field's end rather than begin at its start
    std::uint8_t blanks;    // positions at that edge that are always blank (B)
    std::uint8_t
        sign_width;         // of a sign at the right edge that is blank when there is none to show
    std::uint8_t sign_gap;  // blanks (B) before that sign
};

// What an item's descriptor carries beside type, length, digits and scale. For a number, for use by
// Qconvert: the digits and scale that the module sees describe the text; these describe the field.
// digits 0: as the descriptor itself says.
struct FieldExtra {
    std::int8_t digits;     // digits stored in the field (may be fewer than the text's: PIC 99PPP)
    std::int8_t scale;      // power of ten of the last stored digit (3 for PIC 99PPP)
    std::uint8_t flags;     // FieldFlag bits
    FieldEdges edges = {};  // of a field of characters
    std::uint8_t reserved = 0;
};
static_assert(sizeof(FieldExtra) == 8);

enum FieldFlag : std::uint8_t {
    FIELD_EBCDIC_SIGN =
        1,               // overpunch and digits of a DISPLAY field follow EBCDIC's zone convention
    FIELD_TRUNCATE = 2,  // binary: values are cut to the picture's digits when stored
    FIELD_EBCDIC_TEXT = 4,       // a DISPLAY field holds EBCDIC characters (digits F0 to F9)
    FIELD_DECIMAL_COMMA = 8,     // the conventions' decimal point is a comma
    FIELD_BLANK_WHEN_ZERO = 16,  // zero is stored as blanks
    FIELD_STORED_POINT = 32,     // a DISPLAY field holds its decimal point: S9(3).99
    FIELD_STORED_COMMA = 64,     // the same, a comma
    FIELD_DOUBLE_BYTE = 128      // characters of two bytes each, without shifts (DISPLAY-1)
};

inline FieldExtra field_extra(const XfdDataDesc& data) {
    FieldExtra extra;
    std::memcpy(&extra, data.extra, sizeof extra);
    return extra;
}

inline void set_field_extra(XfdDataDesc& data, const FieldExtra& extra) {
    std::memcpy(data.extra, &extra, sizeof extra);
}

}  // namespace records
