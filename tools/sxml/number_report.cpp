#include "tools/sxml/number_report.h"

#include <cstdio>
#include <utility>

#include "records/numbers.h"
#include "tools/sxml/errors.h"

namespace command {

namespace {

bool is_number_kind(FieldKind kind) {
    return kind == FieldKind::display_number || kind == FieldKind::other_number;
}

std::string hexadecimal(const std::uint8_t* bytes, std::int32_t length) {
    constexpr std::string_view DIGITS = "0123456789ABCDEF";
    std::string text;
    for (std::int32_t i = 0; i < length; ++i) {
        text += DIGITS[bytes[i] >> 4];
        text += DIGITS[bytes[i] & 0xF];
    }
    return text;
}

}  // namespace

NumberReport::NumberReport(const Xfd& xfd, const RecordFields& fields, std::string file_name)
    : xfd_(xfd), fields_(fields), file_name_(std::move(file_name)) {}

void NumberReport::begin_record() {
    exceptions_before_ = records::data_exceptions();
}

void NumberReport::end_record(const conversion::Record& record, std::span<const Field> chosen,
                              std::int32_t length) {
    if (records::data_exceptions() == exceptions_before_) return;
    for (const Field& field : chosen) {
        if (!is_number_kind(field.kind) || !fields_.field_applies(field, length)) continue;
        XfdDataDesc data = xfd_.items[field.item].data;
        data.address = const_cast<std::uint8_t*>(record.data) + field.offset;
        records::Decimal number;
        if (!records::decode_field(data, number)) report(record, field);
    }
}

void NumberReport::report(const conversion::Record& record, const Field& field) {
    if (!warnings_.wants_next()) return;
    warn(file_name_ + ": record " + std::to_string(record.number) + ", field " +
         fields_.name(field) + " (byte offset " +
         std::to_string(record.file_offset + static_cast<std::uint64_t>(field.offset)) +
         ") holds no valid number: X'" + hexadecimal(record.data + field.offset, field.length) +
         "'");
}

void NumberReport::finish() const {
    warnings_.sum_up(file_name_, "numeric field", " held no valid number and came out repaired");
}

}  // namespace command
