// Numeric fields of any kind.
#include "host/records/numbers/fields.h"

#include "host/records/numbers/decimals.h"

namespace records::numbers {

bool read_field(const Field& field, Decimal& out) {
    switch (field.type) {
        case DISPLAY_UNSIGNED:
        case DISPLAY_SIGN_TRAILING:
        case DISPLAY_SIGN_TRAILING_SEPARATE:
        case DISPLAY_SIGN_LEADING:
        case DISPLAY_SIGN_LEADING_SEPARATE:
            return read_display(field, out);
        case PACKED_SIGNED:
        case PACKED_UNSIGNED:
        case PACKED_NO_SIGN:
            return read_packed(field, out);
        case BINARY_SIGNED:
        case BINARY_UNSIGNED:
        case NATIVE_SIGNED:
        case NATIVE_UNSIGNED:
            return read_binary(field, out);
        case FLOAT_NATIVE:
            return read_float(field, out);
        default:
            set_zero(out);
            return false;
    }
}

bool store_field(const Field& field, const Decimal& number) {
    switch (field.type) {
        case DISPLAY_UNSIGNED:
        case DISPLAY_SIGN_TRAILING:
        case DISPLAY_SIGN_TRAILING_SEPARATE:
        case DISPLAY_SIGN_LEADING:
        case DISPLAY_SIGN_LEADING_SEPARATE:
            return store_display(field, number);
        case PACKED_SIGNED:
        case PACKED_UNSIGNED:
        case PACKED_NO_SIGN:
            return store_packed(field, number);
        case BINARY_SIGNED:
        case BINARY_UNSIGNED:
        case NATIVE_SIGNED:
        case NATIVE_UNSIGNED:
            return store_binary(field, number);
        case FLOAT_NATIVE:
            return store_float(field, number);
        default:
            return false;
    }
}

}  // namespace records::numbers
