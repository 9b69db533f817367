// Numeric fields of any kind.
#include "records/numbers/fields.h"

#include "records/numbers/decimals.h"

namespace records::numbers {

namespace {

// How a field's digits are stored.
enum class Form { display, packed, binary, floating, hexadecimal, none };

Form form_of(int type) {
    switch (type) {
        case DISPLAY_UNSIGNED:
        case DISPLAY_SIGN_TRAILING:
        case DISPLAY_SIGN_TRAILING_SEPARATE:
        case DISPLAY_SIGN_LEADING:
        case DISPLAY_SIGN_LEADING_SEPARATE:
            return Form::display;
        case PACKED_SIGNED:
        case PACKED_UNSIGNED:
        case PACKED_NO_SIGN:
            return Form::packed;
        case BINARY_SIGNED:
        case BINARY_UNSIGNED:
        case NATIVE_SIGNED:
        case NATIVE_UNSIGNED:
            return Form::binary;
        case FLOAT_NATIVE:
            return Form::floating;
        case FLOAT_HEX:
            return Form::hexadecimal;
        default:
            return Form::none;
    }
}

}  // namespace

bool read_field(const Field& field, Decimal& out) {
    switch (form_of(field.type)) {
        case Form::display:
            return read_display(field, out);
        case Form::packed:
            return read_packed(field, out);
        case Form::binary:
            return read_binary(field, out);
        case Form::floating:
            return read_float(field, out);
        case Form::hexadecimal:
            return read_hex_float(field, out);
        case Form::none:
            break;
    }
    set_zero(out);
    return false;
}

bool store_field(const Field& field, const Decimal& number) {
    switch (form_of(field.type)) {
        case Form::display:
            return store_display(field, number);
        case Form::packed:
            return store_packed(field, number);
        case Form::binary:
            return store_binary(field, number);
        case Form::floating:
            return store_float(field, number);
        case Form::hexadecimal:
            return store_hex_float(field, number);
        case Form::none:
            break;
    }
    return false;
}

}  // namespace records::numbers
