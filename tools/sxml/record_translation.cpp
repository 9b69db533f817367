#include "tools/sxml/record_translation.h"

#include <algorithm>
#include <utility>

#include "records/numbers.h"
#include "tools/sxml/errors.h"

namespace command {

RecordTranslation::RecordTranslation(const Xfd& from, const Xfd& to, TextTranslation text,
                                     const RecordFields& fields, std::int32_t record_length)
    : from_(from),
      to_(to),
      text_(std::move(text)),
      fields_(fields),
      translated_(static_cast<std::size_t>(record_length)),
      stored_(translated_.size()),
      scratch_(translated_.size()) {
    if (from.item_count != to.item_count) fail("the layout differs between character sets");
}

const std::uint8_t* RecordTranslation::translate(const std::uint8_t* record,
                                                 std::span<const Field> chosen,
                                                 std::int32_t length) {
    std::transform(record, record + translated_.size(), translated_.begin(),
                   [this](std::uint8_t byte) { return text_.filler[byte]; });
    std::fill(stored_.begin(), stored_.end(), std::uint8_t{0});
    for (const Field& field : chosen) {
        if (fields_.field_applies(field, length)) translate_field(record, field);
    }
    return translated_.data();
}

void RecordTranslation::translate_field(const std::uint8_t* record, const Field& field) {
    const std::uint8_t* bytes = record + field.offset;
    std::span<const std::uint8_t> translated;
    switch (field.kind) {
        case FieldKind::text:
            try {
                translated = text_.field(field, {bytes, static_cast<std::size_t>(field.length)});
            } catch (const Failure& failure) {
                fail("field " + fields_.name(field) + ": " + failure.what());
            }
            store(field, translated.data());
            break;
        case FieldKind::display_number:
            translate_number(record, field);
            break;
        default:
            store(field, bytes);
    }
}

void RecordTranslation::translate_number(const std::uint8_t* record, const Field& field) {
    XfdDataDesc source = from_.items[field.item].data;
    XfdDataDesc target = to_.items[field.item].data;
    source.address = const_cast<std::uint8_t*>(record) + field.offset;
    target.address = scratch_.data();
    records::Decimal number;
    records::decode_field(source, number);
    records::encode_field(number, target);
    store(field, scratch_.data());
}

void RecordTranslation::store(const Field& field, const std::uint8_t* bytes) {
    for (std::int32_t i = 0; i < field.length; ++i) {
        const auto position = static_cast<std::size_t>(field.offset) + static_cast<std::size_t>(i);
        if (stored_[position] != 0 && translated_[position] != bytes[i]) {
            fail("field " + fields_.name(field) +
                 " shares bytes with another field, and the two need different translations of "
                 "them; say in the copybook when each of them holds (`*> sxml: when ...`)");
        }
        stored_[position] = 1;
        translated_[position] = bytes[i];
    }
}

}  // namespace command
