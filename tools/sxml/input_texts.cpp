#include "tools/sxml/input_texts.h"

#include <algorithm>
#include <utility>

#include "records/alignment.h"
#include "records/field_types.h"
#include "tools/sxml/errors.h"

namespace command {

namespace {

TextSide side_of(const XfdItem& field) {
    return field.data.type == records::JUSTIFIED ? TextSide::right : TextSide::left;
}

}  // namespace

void divert_texts(Xfd& xfd) {
    for (std::int32_t i = 0; i < xfd.item_count; ++i) {
        XfdDataDesc& data = xfd.items[i].data;
        if (!is_numeric_type(data.type)) data.type = TEXT_TO_MOVE;
    }
}

InputTexts::InputTexts(const Xfd& xfd, const RecordFields& fields, FieldText& conversion,
                       std::string shown_name)
    : xfd_(xfd), fields_(fields), conversion_(conversion), shown_name_(std::move(shown_name)) {}

void InputTexts::begin_record(std::uint64_t number, bool keeps) {
    record_ = number;
    if (!keeps) long_texts_.clear();
}

void InputTexts::move(std::int32_t index, std::string_view text, std::uint8_t* target) {
    const XfdItem& field = xfd_.items[index];
    const auto size = static_cast<std::size_t>(field.data.length);
    const std::size_t moved = conversion_.fitting(text, size);
    std::uint8_t* const end = target + size;
    if (side_of(field) == TextSide::right) {
        std::fill(target, end - moved, std::uint8_t{' '});
        std::copy_n(text.begin(), moved, end - moved);
    } else {
        std::fill(std::copy_n(text.begin(), moved, target), end, std::uint8_t{' '});
        records::align_field(field, target - field.offset);
    }
    const bool is_converted = conversion_.converts() && field.format != XFD_FORMAT_BINARY;
    if (is_converted) long_texts_.erase(index);
    if (moved == text.size()) return;
    if (is_converted) {
        long_texts_.emplace(index, text);
    } else {
        report(index, text, text.size());
    }
}

std::span<const std::uint8_t> InputTexts::convert(const Field& field,
                                                  std::span<const std::uint8_t> bytes) {
    if (!conversion_.converts()) return bytes;
    const auto found = long_texts_.find(field.item);
    const bool is_long = found != long_texts_.end();
    const std::string_view text =
        is_long ? std::string_view(found->second)
                : std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const FieldText::Converted converted =
        conversion_.convert({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()},
                            bytes.size(), side_of(xfd_.items[field.item]));
    if (converted.whole > bytes.size()) report(field.item, text, converted.whole);
    return converted.field;
}

void InputTexts::report(std::int32_t index, std::string_view text, std::size_t whole) {
    if (!cut_.wants_next()) return;
    const XfdItem& item = xfd_.items[index];
    warn(shown_name_ + ": record " + std::to_string(record_) + ", field " + fields_.name(index) +
         ": a text of " + std::to_string(whole) + " bytes was cut to fit into " +
         std::to_string(item.data.length) + ": " + quoted(text));
}

void InputTexts::finish() const {
    cut_.sum_up(shown_name_, "text", " cut to the length of the field");
}

std::string quoted(std::string_view text) {
    std::size_t shown = 40;
    const bool is_long = text.size() > shown;
    while (is_long && shown > 0 && (static_cast<unsigned char>(text[shown]) & 0xC0) == 0x80)
        --shown;
    text = text.substr(0, shown);
    return "'" + std::string(text) + (is_long ? "...'" : "'");
}

}  // namespace command
