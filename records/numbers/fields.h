// Reading and storing each kind of numeric field. Nothing here counts data exceptions: a result of
// false says that there is one.
#pragma once

#include <algorithm>
#include <cstdint>

#include "records/field_types.h"
#include "records/numbers.h"

namespace records::numbers {

// A numeric field as its descriptor tells it, with every number made safe to use.
struct Field {
    std::uint8_t* bytes;
    int length;  // bytes, 0 when there is no field
    int type;    // FieldType
    int digits;  // digits of the picture, 0 when not known
    int scale;   // power of ten of the last stored digit
    unsigned flags;

    bool has(FieldFlag flag) const { return (flags & flag) != 0; }
};

inline Field field_of(const XfdDataDesc& data) {
    const FieldExtra extra = field_extra(data);
    const bool described = extra.digits > 0;
    return {.bytes = static_cast<std::uint8_t*>(data.address),
            .length = data.address == nullptr ? 0 : std::max(data.length, 0),
            .type = data.type,
            .digits = described ? extra.digits : std::max<int>(data.digits, 0),
            .scale = described ? extra.scale : data.scale,
            .flags = extra.flags};
}

bool read_display(const Field& field, Decimal& out);
bool read_packed(const Field& field, Decimal& out);
bool read_binary(const Field& field, Decimal& out);
bool read_float(const Field& field, Decimal& out);
bool read_hex_float(const Field& field, Decimal& out);

bool store_display(const Field& field, const Decimal& number);
bool store_packed(const Field& field, const Decimal& number);
bool store_binary(const Field& field, const Decimal& number);
bool store_float(const Field& field, const Decimal& number);
bool store_hex_float(const Field& field, const Decimal& number);

// Any kind, by type. A type that is not one of our numeric fields reads as zero and stores nothing.
bool read_field(const Field& field, Decimal& out);
bool store_field(const Field& field, const Decimal& number);

}  // namespace records::numbers
