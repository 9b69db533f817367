#include "records/layout/conditions/comparison.h"

#include <cstdint>

#include "records/layout/conditions/code_page.h"

namespace records {

int hex_value(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

std::string bytes_of_hex(const std::string& digits) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
        bytes += static_cast<char>(hex_value(digits[i]) * 16 + hex_value(digits[i + 1]));
    }
    return bytes;
}

int figurative_byte(const std::string& name, bool ebcdic) {
    const auto character = [ebcdic](char c) {
        return static_cast<int>(static_cast<std::uint8_t>(in_encoding({c}, ebcdic)[0]));
    };
    if (name == "SPACE") return character(' ');
    if (name == "ZERO") return character('0');
    if (name == "QUOTE") return character('"');
    if (name == "HIGH-VALUE") return 0xFF;
    return name == "LOW-VALUE" || name == "NULL" ? 0 : -1;
}

bool is_number(const std::string& text) {
    const std::size_t start = !text.empty() && (text[0] == '-' || text[0] == '+') ? 1 : 0;
    bool digit = false;
    bool point = false;
    for (std::size_t i = start; i < text.size(); ++i) {
        if (text[i] == '.' && !point) {
            point = true;
        } else if (text[i] >= '0' && text[i] <= '9') {
            digit = true;
        } else {
            return false;
        }
    }
    return digit;
}

bool is_numeric(const Operand& item) {
    return is_numeric_type(item.form.type);
}

bool is_display(const Operand& item) {
    return item.form.type >= DISPLAY_UNSIGNED && item.form.type <= DISPLAY_SIGN_LEADING_SEPARATE;
}

bool compares_numbers(const Test& test) {
    if (!is_numeric(test.left)) return false;
    switch (test.right.kind) {
        case Operand::Kind::item:
            return is_numeric(test.right);
        case Operand::Kind::number:
            return true;
        case Operand::Kind::figurative:
            return test.right.value == "ZERO";
        case Operand::Kind::text:
            return !is_display(test.left) && !shows_digits(test.left);
        default:
            return false;
    }
}

bool shows_digits(const Operand& item) {
    const FieldType type = item.form.type;
    if (type == DISPLAY_SIGN_TRAILING || type == DISPLAY_SIGN_LEADING) {
        return (item.form.flags & (FIELD_STORED_POINT | FIELD_STORED_COMMA)) == 0;
    }
    const bool is_packed = type >= PACKED_SIGNED && type <= PACKED_NO_SIGN;
    // Of a binary field that is not cut to its picture the picture's digits are not known.
    return is_packed || (item.form.flags & FIELD_TRUNCATE) != 0;
}

}  // namespace records
