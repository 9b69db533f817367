// The record description: what the host tells the module about the records of one file. Its layout
// is fixed; the module reads it at these offsets.
#pragma once

#include <cstddef>
#include <cstdint>

constexpr int XFD_MAX_DIMENSIONS = 15;
constexpr std::size_t XFD_ITEM_NAME_SIZE = 76;  // with the NUL
constexpr std::size_t XFD_NAME_SIZE = 198;      // with the NUL
constexpr std::int16_t XFD_GROUP = 999;         // XfdItem::condition of a group
constexpr std::int16_t XFD_FORMAT_BINARY = 2;   // XfdItem::format of binary data

// Data descriptor: where a value lies and what it looks like.
struct XfdDataDesc {
    void* address;
    std::int32_t length;    // bytes
    std::int16_t type;      // type code; 0 = text
    std::int8_t digits;     // decimal digits of a number
    std::int8_t scale;      // power of ten of the last digit: -2 for two decimals
    std::uint8_t extra[8];  // the host's own
};
static_assert(sizeof(XfdDataDesc) == 24);
static_assert(offsetof(XfdDataDesc, length) == 8);
static_assert(offsetof(XfdDataDesc, type) == 12);
static_assert(offsetof(XfdDataDesc, digits) == 14);
static_assert(offsetof(XfdDataDesc, scale) == 15);
static_assert(offsetof(XfdDataDesc, extra) == 16);

// One group or field, once for each of its occurrences.
struct XfdItem {
    std::int32_t offset;  // in the record, from 0
    std::int32_t host1;
    XfdDataDesc data;
    std::int16_t format;          // XFD_FORMAT_BINARY: written as hexadecimal text
    std::int16_t condition;       // 0 every record, n while condition n holds, XFD_GROUP a group
    std::int16_t level;           // 1 for a record-level item, greater when nested deeper
    std::int16_t occurs_max[16];  // per dimension, outermost first
    std::int16_t subscripts[16];  // per dimension, from 1
    std::uint8_t host2[2];
    std::uint32_t dimensions_word;  // low 4 bits: dimensions; the rest is the host's
    char name[XFD_ITEM_NAME_SIZE];
    const char* key;  // the module's: set to `name` before the item goes into a name index
    std::uint8_t host3[136];

    int dimensions() const { return static_cast<int>(dimensions_word & 0xF); }
};
static_assert(sizeof(XfdItem) == 328);
static_assert(offsetof(XfdItem, data) == 8);
static_assert(offsetof(XfdItem, format) == 32);
static_assert(offsetof(XfdItem, condition) == 34);
static_assert(offsetof(XfdItem, level) == 36);
static_assert(offsetof(XfdItem, occurs_max) == 38);
static_assert(offsetof(XfdItem, subscripts) == 70);
static_assert(offsetof(XfdItem, dimensions_word) == 104);
static_assert(offsetof(XfdItem, name) == 108);
static_assert(offsetof(XfdItem, key) == 184);

// One record-type condition. Condition number n is conditions[n - 1].
struct XfdCondition {
    std::uint8_t host1[218];
    std::int16_t item;     // index of the item tied to it; no item when out of range
    std::uint8_t is_true;  // bit 0: result of the last evaluation
    std::uint8_t host2[3];
};
static_assert(sizeof(XfdCondition) == 224);
static_assert(offsetof(XfdCondition, item) == 218);
static_assert(offsetof(XfdCondition, is_true) == 220);

// The conventions of the record's data.
struct XfdConventions {
    std::uint8_t host1[6];
    std::uint8_t decimal_point;  // a character
    std::uint8_t host2[9];
    std::int32_t field_encoding;  // host encoding code of fields of type codes 40 to 44
    std::uint8_t host3[12];
};
static_assert(offsetof(XfdConventions, decimal_point) == 6);
static_assert(offsetof(XfdConventions, field_encoding) == 16);

// The description of one file's records.
struct Xfd {
    std::uint8_t host1[2];
    char name[XFD_NAME_SIZE];  // names the document element
    const XfdConventions* conventions;
    std::uint8_t host2[8];
    std::int16_t condition_count;
    std::uint8_t host3[6];
    XfdCondition* conditions;
    std::uint8_t host4[8];
    std::int32_t record_scan_count;  // leading items looked at when a record layout is chosen
    std::uint8_t host5[4];
    XfdItem* items;
    std::uint8_t host6[8];
    std::int32_t item_count;
    std::uint8_t flags;  // bit 0: several record layouts
    std::uint8_t host7[3];
};
static_assert(offsetof(Xfd, name) == 2);
static_assert(offsetof(Xfd, conventions) == 200);
static_assert(offsetof(Xfd, condition_count) == 216);
static_assert(offsetof(Xfd, conditions) == 224);
static_assert(offsetof(Xfd, record_scan_count) == 240);
static_assert(offsetof(Xfd, items) == 248);
static_assert(offsetof(Xfd, item_count) == 264);
static_assert(offsetof(Xfd, flags) == 268);
constexpr std::uint8_t XFD_SEVERAL_LAYOUTS = 1;

// True for the type codes that Qconvert converts: 1-14, 23, 30-33 and 35-39. All others are
// character data, copied as text.
constexpr bool is_numeric_type(int type) {
    return (type >= 1 && type <= 14) || type == 23 || (type >= 30 && type <= 33) ||
           (type >= 35 && type <= 39);
}

// Functions that the host hands to the module by name; see host/dispatch_table.h.
extern "C" {
// Reads the record description found under `name` (from host_xfd_name). The two numbers are 14 and
// 30. Result: a description owned by the host and given back with Q4XFDFree; null when there is
// none (the host has then reported why).
using Q4ParseXFDFunction = Xfd*(const char* name, int first, int second);
// Releases a description.
using Q4XFDFreeFunction = void(Xfd* xfd);
// Evaluates condition `number` (from 1) on the record and stores the result in bit 0 of its
// is_true.
using Q4TestCOBOLCondFunction = int(Xfd* xfd, int number, const void* record);
// Converts the value described by `source` into the form described by `destination`, within its
// length. The third argument is 1. A text (type 0) as destination is filled up with blanks on the
// right; its scale says how many decimals are wanted. `extra` of a text descriptor is not read.
using QconvertFunction = int(XfdDataDesc* destination, const XfdDataDesc* source, int mode);
}
