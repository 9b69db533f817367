#include "tools/sxml/number_report.h"

#include <cstdio>
#include <utility>

#include "host/records/numbers.h"
#include "tools/sxml/errors.h"

namespace command {

namespace {

constexpr std::uint64_t NAMED_AT_MOST = 10;

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

void NumberReport::end_record(const Record& record, std::span<const Field> chosen,
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

void NumberReport::report(const Record& record, const Field& field) {
    if (++count_ > NAMED_AT_MOST) return;
    warn(file_name_ + ": record " + std::to_string(record.number) + ", field " +
         fields_.name(field) + " (byte offset " +
         std::to_string(record.file_offset + static_cast<std::uint64_t>(field.offset)) +
         ") holds no valid number: X'" + hexadecimal(record.data + field.offset, field.length) +
         "'");
}

void NumberReport::finish() const {
    if (count_ == 0) return;
    std::string text = std::to_string(count_) +
                       (count_ == 1 ? " numeric field" : " numeric fields") +
                       " held no valid number and came out repaired";
    if (count_ > NAMED_AT_MOST) {
        text += "; the first " + std::to_string(NAMED_AT_MOST) + " are named above";
    }
    warn(file_name_ + ": " + text);
}

}  // namespace command
