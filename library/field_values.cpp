#include "library/field_values.h"

#include <algorithm>
#include <span>
#include <string_view>
#include <vector>

#include "conversion/texts/text_decoder.h"
#include "conversion/texts/utf8.h"
#include "host/utf8.h"
#include "records/alignment.h"
#include "records/field_types.h"
#include "records/hexadecimal.h"

namespace library {

namespace {

XfdDataDesc field_at(const XfdItem& item, std::uint8_t* record) {
    XfdDataDesc field = item.data;
    field.address = record + item.offset;
    return field;
}

std::span<const std::uint8_t> bytes_at(const XfdItem& item, const std::uint8_t* record) {
    return {record + item.offset, static_cast<std::size_t>(item.data.length)};
}

Complaint set_binary(const XfdItem& item, std::uint8_t* record, std::string_view text) {
    const std::size_t digits = 2 * static_cast<std::size_t>(item.data.length);
    if (text.size() != digits || !records::is_hexadecimal(text)) {
        return "takes " + std::to_string(digits) + " hexadecimal digits";
    }
    records::put_hexadecimal(text, record + item.offset);
    return {};
}

}  // namespace

bool is_binary(const XfdItem& item) {
    return item.format == XFD_FORMAT_BINARY;
}
bool is_number(const XfdItem& item) {
    return !is_binary(item) && is_numeric_type(item.data.type);
}
bool is_float(const XfdItem& item) {
    const bool is_floating =
        item.data.type == records::FLOAT_NATIVE || item.data.type == records::FLOAT_HEX;
    return is_number(item) && is_floating;
}

Complaint FieldValues::get_text(const XfdItem& item, const std::uint8_t* record,
                                std::string& text) const {
    text.clear();
    if (is_binary(item)) {
        text = records::hexadecimal(bytes_at(item, record));
        return {};
    }
    if (!is_number(item)) return get_characters(item, record, text);
    records::Decimal number;
    Complaint complaint = get_number(item, record, number);
    if (complaint.empty()) text = number_text(number, std::max(0, -int{item.data.scale}));
    return complaint;
}

Complaint FieldValues::get_characters(const XfdItem& item, const std::uint8_t* record,
                                      std::string& text) const {
    const std::span<const std::uint8_t> bytes = bytes_at(item, record);
    const conversion::TextForm form = conversion::text_form(item, characters_);
    conversion::TextDecoder decoder(bytes, characters_, form);
    std::size_t end = 0;  // of what is not blank
    while (const auto character = decoder.next()) {
        if (character->code < 0) {
            return "holds X'" +
                   records::hexadecimal(bytes.subspan(character->start, character->length)) +
                   "', which is " +
                   (characters_.is_utf8() ? "not UTF-8" : "no character of " + characters_.name());
        }
        conversion::append_utf8(static_cast<char32_t>(character->code), text);
        if (!decoder.is_blank(*character) && character->code != 0) end = text.size();
    }
    text.resize(end);
    return {};
}

Complaint FieldValues::get_number(const XfdItem& item, const std::uint8_t* record,
                                  records::Decimal& number) {
    if (!is_number(item)) return "is not a numeric field";
    const XfdDataDesc field = field_at(item, const_cast<std::uint8_t*>(record));
    if (records::decode_field(field, number)) return {};
    return "holds no valid number: X'" + records::hexadecimal(bytes_at(item, record)) + "'";
}

Complaint FieldValues::set_text(const XfdItem& item, std::uint8_t* record,
                                std::string_view text) const {
    if (is_binary(item)) return set_binary(item, record, text);
    if (!is_number(item)) return set_characters(item, record, text);
    records::Decimal number;
    if (!records::parse_number(text, number)) return "takes a number, not " + std::string(text);
    return set_number(item, record, number);
}

Complaint FieldValues::set_characters(const XfdItem& item, std::uint8_t* record,
                                      std::string_view text) const {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (bytes[i] < 0x80) continue;
        const std::size_t width = utf8::sequence_length(bytes + i, text.size() - i);
        if (width == 0) return "takes a text in UTF-8";
        i += width - 1;
    }
    std::string converted;
    const conversion::TextForm form = conversion::text_form(item, characters_);
    if (from_utf8_.converts()) {
        const auto lost = from_utf8_.convert(text, converted, form);
        if (lost) {
            std::string character;
            conversion::append_utf8(*lost, character);
            return "cannot hold " + character + ", which is not in " + characters_.name();
        }
        text = converted;
    }
    const auto size = static_cast<std::size_t>(item.data.length);
    if (text.size() > size) {
        return "has " + std::to_string(size) + " bytes, the text " + std::to_string(text.size());
    }
    std::uint8_t* const target = record + item.offset;
    conversion::fill_blank(target, size, conversion::blank_of(form, characters_));
    std::copy(text.begin(), text.end(), target);
    const records::FieldEdges edges = records::field_extra(item.data).edges;
    if (edges.is_right == 0 && edges.blanks == 0) return {};
    if (!characters_.is_ebcdic()) {
        records::align_field(item, record);
    } else if (item.data.type == records::JUSTIFIED) {
        std::rotate(target, target + text.size(), target + size);
    }
    return {};
}

Complaint FieldValues::set_number(const XfdItem& item, std::uint8_t* record,
                                  const records::Decimal& number) {
    if (!is_number(item)) return "is not a numeric field";
    std::uint8_t* const target = record + item.offset;
    const std::vector<std::uint8_t> before(target, target + item.data.length);
    const XfdDataDesc field = field_at(item, record);
    records::Decimal stored;
    const bool is_exact = records::encode_field(number, field) &&
                          records::decode_field(field, stored) &&
                          (is_float(item) || records::compare(number, stored) == 0);
    if (is_exact) return {};
    std::copy(before.begin(), before.end(), target);
    return "cannot hold " + number_text(number, 0) + " exactly";
}

std::string number_text(const records::Decimal& number, int decimals) {
    std::string digits;
    for (int i = 0; i < number.count; ++i)
        digits += static_cast<char>('0' + number.digits[static_cast<std::size_t>(i)]);
    if (number.count == 0) digits = "0";
    int scale = number.count == 0 ? 0 : number.scale;
    if (scale > -decimals) {
        digits.append(static_cast<std::size_t>(scale + decimals), '0');
        scale = -decimals;
    }
    const auto after_point = static_cast<std::size_t>(-scale);
    if (digits.size() <= after_point) digits.insert(0, after_point + 1 - digits.size(), '0');
    const std::size_t first =
        std::min(digits.find_first_not_of('0'), digits.size() - after_point - 1);
    digits.erase(0, first);
    if (after_point > 0) digits.insert(digits.size() - after_point, 1, '.');
    const bool is_negative = number.negative && digits.find_first_not_of("0.") != std::string::npos;
    return is_negative ? "-" + digits : digits;
}

records::Decimal decimal_of(std::int64_t value, int decimals) {
    records::Decimal number;
    const std::string text = std::to_string(value);
    number.negative = text.front() == '-';
    for (const char c : text.substr(number.negative ? 1 : 0)) {
        number.digits[static_cast<std::size_t>(number.count++)] =
            static_cast<std::uint8_t>(c - '0');
    }
    if (value == 0) number.count = 0;
    number.scale = -decimals;
    return number;
}

bool scaled_value(const records::Decimal& number, int& decimals, std::int64_t& value) {
    const std::string text = number_text(number, decimals);
    const std::size_t point = text.find('.');
    std::string digits = text;
    if (point != std::string::npos) digits.erase(point, 1);
    constexpr std::size_t MOST_DIGITS = 18;
    const std::size_t sign = digits.front() == '-' ? 1 : 0;
    const std::size_t first = digits.find_first_not_of('0', sign);
    if (first != std::string::npos && digits.size() - first > MOST_DIGITS) return false;
    decimals = point == std::string::npos ? 0 : static_cast<int>(text.size() - point - 1);
    value = std::stoll(digits);
    return true;
}

}  // namespace library
