#include "records/layout/forms.h"

#include <algorithm>

#include "records/layout/placement.h"

namespace records {
namespace {

// Plain notation of the extreme values of a 4-byte float: 46 decimals reach the smallest number
// (0. and 46 digits), 39 digits the largest; the module asks for digits + 2 characters.
constexpr int FLOAT_DIGITS = 47;
constexpr int FLOAT_SCALE = -46;
// An 8-byte float has values that no descriptor can hold in plain notation; this is the maximum.
constexpr int DOUBLE_DIGITS = MAX_DIGITS_DESCRIBED;
constexpr int DOUBLE_SCALE = -(MAX_DIGITS_DESCRIBED - 1);

// Digits of the largest number in so many bytes of binary.
int full_range_digits(std::int64_t size, bool is_signed) {
    constexpr int UNSIGNED[] = {1, 3, 5, 8, 10, 13, 15, 17, 20};
    constexpr int SIGNED[] = {1, 3, 5, 7, 10, 12, 15, 17, 19};
    const auto index = static_cast<std::size_t>(std::clamp<std::int64_t>(size, 0, 8));
    return is_signed ? SIGNED[index] : UNSIGNED[index];
}

FieldType display_type(const Node& node, bool is_signed) {
    if (!is_signed) return DISPLAY_UNSIGNED;
    if (node.sign_leading) {
        return node.sign_separate ? DISPLAY_SIGN_LEADING_SEPARATE : DISPLAY_SIGN_LEADING;
    }
    return node.sign_separate ? DISPLAY_SIGN_TRAILING_SEPARATE : DISPLAY_SIGN_TRAILING;
}

// The text's digits and scale. Digits at P positions are not stored but stand in the text: 99PPP
// is a number of five digits, VPP99 one of four decimals.
void describe_text(FieldForm& form, int digits, int scale) {
    form.stored_scale = scale;
    form.scale = std::min(scale, 0);
    form.digits = scale > 0 ? digits + scale : std::max(digits, -scale);
}

// The smallest number in hexadecimal floating point is 5.4e-79. So many decimals hold it, and all
// others, to the last of the digits that tell it from its neighbours: 9, or 18 of 8 bytes.
constexpr int HEX_FLOAT_SCALE = -87;
constexpr int HEX_DOUBLE_SCALE = -96;

FieldForm hex_float_form(std::int64_t size) {
    FieldForm form;
    form.type = FLOAT_HEX;
    form.scale = size == 4 ? HEX_FLOAT_SCALE : HEX_DOUBLE_SCALE;
    form.digits = 1 - form.scale;
    form.stored_digits = form.digits;
    form.stored_scale = form.scale;
    return form;
}

FieldForm float_form(std::int64_t size) {
    FieldForm form;
    form.type = FLOAT_NATIVE;
    form.digits = size == 4 ? FLOAT_DIGITS : DOUBLE_DIGITS;
    form.scale = size == 4 ? FLOAT_SCALE : DOUBLE_SCALE;
    form.stored_digits = form.digits;
    form.stored_scale = form.scale;
    return form;
}

FieldType binary_type(bool is_little_endian, bool is_signed) {
    if (is_little_endian) return is_signed ? NATIVE_SIGNED : NATIVE_UNSIGNED;
    return is_signed ? BINARY_SIGNED : BINARY_UNSIGNED;
}

FieldForm native_form(std::int64_t size, bool is_signed, const LayoutOptions& options) {
    FieldForm form;
    form.type = binary_type(!options.is_of_mainframe(), is_signed);
    form.stored_digits = full_range_digits(size, is_signed);
    describe_text(form, form.stored_digits, 0);
    return form;
}

FieldForm character_form(const Node& node, const Picture& picture) {
    FieldForm form;
    switch (picture.category) {
        case Category::alphabetic:
            form.type = ALPHABETIC;
            break;
        case Category::edited:
            form.type = EDITED;
            break;
        case Category::national:
        case Category::national_edited:
            form.type = NATIONAL;
            break;
        default:
            form.type = ALPHANUMERIC;
    }
    if (node.usage == Usage::national) form.type = NATIONAL;
    if (node.usage == Usage::double_byte) form.type = ALPHANUMERIC;
    if (node.usage == Usage::double_byte || picture.category == Category::double_byte) {
        form.flags |= FIELD_DOUBLE_BYTE;
    }
    if (node.source->justified && form.type != NATIONAL) form.type = JUSTIFIED;
    return form;
}

FieldForm binary_form(const Node& node, const Picture& picture, const LayoutOptions& options) {
    FieldForm form;
    const bool is_signed = picture.is_signed;
    const bool is_native = node.usage == Usage::comp_5 ||
                           (node.usage == Usage::binary && options.byte_order == ByteOrder::native);
    form.type = binary_type(is_native && !options.is_of_mainframe(), is_signed);
    const bool truncate = node.usage == Usage::binary && options.binary_truncate;
    const bool from_picture = picture.category == Category::numeric;
    if (truncate) form.flags |= FIELD_TRUNCATE;
    // The text has room for all that the bytes can hold: records from elsewhere may hold more
    // digits than the picture, and none of them may be lost.
    const int range = full_range_digits(node.size, is_signed);
    form.stored_digits = truncate ? picture.digits : range;
    describe_text(form, range, from_picture ? picture.scale : 0);
    return form;
}

FieldForm display_form(const Node& node, const Picture& picture, const LayoutOptions& options) {
    FieldForm form;
    form.type = display_type(node, picture.is_signed);
    form.stored_digits = picture.digits;
    describe_text(form, picture.digits, picture.scale);
    if (picture.stored_point == '.') form.flags |= FIELD_STORED_POINT;
    if (picture.stored_point == ',') form.flags |= FIELD_STORED_COMMA;
    if (options.ebcdic_sign) form.flags |= FIELD_EBCDIC_SIGN;
    if (options.encoding == RecordEncoding::ebcdic) form.flags |= FIELD_EBCDIC_TEXT;
    return form;
}

FieldForm packed_form(const Node& node, const Picture& picture) {
    FieldForm form;
    form.type = node.usage == Usage::comp_6 ? PACKED_NO_SIGN
                                            : (picture.is_signed ? PACKED_SIGNED : PACKED_UNSIGNED);
    form.stored_digits = picture.digits;
    describe_text(form, picture.digits, picture.scale);
    return form;
}

FieldForm form_of(const Node& node, const LayoutOptions& options) {
    const bool unsigned_item = node.source->binary_unsigned.value_or(false);
    switch (node.usage) {
        case Usage::comp_1:
        case Usage::comp_2:
        case Usage::float_short:
        case Usage::float_long:
            return options.is_of_mainframe() ? hex_float_form(node.size) : float_form(node.size);
        case Usage::pointer:
            return opaque_form();
        case Usage::index:
            return native_form(node.size, true, options);
        case Usage::binary_char:
        case Usage::binary_short:
        case Usage::binary_long:
        case Usage::binary_double:
            return native_form(node.size, !unsigned_item, options);
        default:
            break;
    }
    if (!node.source->picture) return {};
    const Picture& picture = *node.source->picture;
    if (node.usage == Usage::comp_x) return binary_form(node, picture, options);
    if (picture.category != Category::numeric) return character_form(node, picture);
    switch (node.usage) {
        case Usage::binary:
        case Usage::comp_5:
            return binary_form(node, picture, options);
        case Usage::comp_3:
        case Usage::comp_6:
            return packed_form(node, picture);
        case Usage::national:
        case Usage::double_byte:
            return character_form(node, picture);
        default:
            return display_form(node, picture, options);
    }
}

}  // namespace

FieldForm opaque_form() {
    FieldForm form;
    form.type = OPAQUE;
    form.hex = true;
    return form;
}

void set_forms(Node& root, const LayoutOptions& options, Diagnostics& diagnostics) {
    for_each(root, [&](Node& node) {
        if (node.is_group()) return;
        FieldForm& form = node.form = form_of(node, options);
        if (node.source->hex) form = opaque_form();
        if (!is_numeric_type(form.type)) return;
        if (node.source->blank_when_zero) form.flags |= FIELD_BLANK_WHEN_ZERO;
        if (form.digits > MAX_DIGITS_DESCRIBED) {
            diagnostics.error(node.source->place,
                              item_name(*node.source) + " stands for numbers of " +
                                  std::to_string(form.digits) + " digits, P positions included; " +
                                  std::to_string(MAX_DIGITS_DESCRIBED) +
                                  " can be described: use fewer P positions");
        }
    });
}

const char* usage_name(Usage usage) {
    switch (usage) {
        case Usage::display:
            return "DISPLAY";
        case Usage::binary:
            return "COMP";
        case Usage::comp_1:
            return "COMP-1";
        case Usage::comp_2:
            return "COMP-2";
        case Usage::comp_3:
            return "COMP-3";
        case Usage::comp_5:
            return "COMP-5";
        case Usage::comp_6:
            return "COMP-6";
        case Usage::comp_x:
            return "COMP-X";
        case Usage::national:
            return "NATIONAL";
        case Usage::index:
            return "INDEX";
        case Usage::pointer:
            return "POINTER";
        case Usage::binary_char:
            return "BINARY-CHAR";
        case Usage::binary_short:
            return "BINARY-SHORT";
        case Usage::binary_long:
            return "BINARY-LONG";
        case Usage::binary_double:
            return "BINARY-DOUBLE";
        case Usage::float_short:
            return "FLOAT-SHORT";
        case Usage::float_long:
            return "FLOAT-LONG";
        case Usage::double_byte:
            return "DISPLAY-1";
    }
    return "";
}

}  // namespace records
