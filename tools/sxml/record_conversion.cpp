#include "tools/sxml/record_conversion.h"

#include <algorithm>
#include <numeric>

#include "tools/sxml/errors.h"
#include "tools/sxml/progress.h"

namespace command {

namespace {

// Records between looks at the clock and at the output's state.
constexpr std::uint64_t RECORDS_BETWEEN_LOOKS = 1024;

}  // namespace

RecordConversion::RecordConversion(conversion::ByteSource& source,
                                   records::Description& description, const Xfd* translated,
                                   const CharacterSet& characters, RecordFields& fields)
    : source_(source),
      description_(description),
      fields_(fields),
      text_check_(characters),
      numbers_(description.xfd(), fields, source.name()) {
    if (translated == nullptr) return;
    const auto translate_field = [this, &characters](const Field&,
                                                     std::span<const std::uint8_t> bytes) {
        translated_text_.resize(bytes.size());
        std::transform(bytes.begin(), bytes.end(), translated_text_.begin(),
                       [&](std::uint8_t byte) { return characters.translation()[byte]; });
        return std::span<const std::uint8_t>(translated_text_);
    };
    TextTranslation text{translate_field, {}};
    std::iota(text.filler.begin(), text.filler.end(), std::uint8_t{0});
    translation_ = std::make_unique<RecordTranslation>(
        description.xfd(), *translated, std::move(text), fields, description.record_length());
}

void RecordConversion::run(conversion::RecordFormat format, Document& document,
                           const AtomicOutput& output) {
    const auto record_length = static_cast<std::size_t>(description_.record_length());
    const auto reader = conversion::read_records(format, source_, record_length);
    Progress progress(source_.size());
    while (const std::optional<conversion::Record> record = value_of(reader->next())) {
        convert(*record, document);
        if (record->number % RECORDS_BETWEEN_LOOKS == 0) {
            progress.update(record->number, record->file_offset);
            check_written({&output});
        }
    }
    check_written({&output});
    document.close();
    check_written({&output});
    numbers_.finish();
}

std::string RecordConversion::place(const conversion::Record& record) const {
    return source_.name() + ": record " + std::to_string(record.number) + ", ";
}

void RecordConversion::convert(const conversion::Record& record, Document& document) {
    const std::span<const Field> chosen = fields_.choose(record.data);
    const std::int32_t length = description_.used_length(record.data, description_.record_length());
    check_texts(record, chosen, length);
    numbers_.begin_record();
    const std::uint8_t* written = translation_ ? translate(record, chosen, length) : record.data;
    document.write(written, length);
    numbers_.end_record(record, chosen, length);
}

const std::uint8_t* RecordConversion::translate(const conversion::Record& record,
                                                std::span<const Field> chosen,
                                                std::int32_t length) {
    try {
        return translation_->translate(record.data, chosen, length);
    } catch (const Failure& failure) {
        fail(place(record) + failure.what());
    }
}

void RecordConversion::check_texts(const conversion::Record& record, std::span<const Field> chosen,
                                   std::int32_t length) const {
    for (const Field& field : chosen) {
        if (field.kind != FieldKind::text || !fields_.field_applies(field, length)) continue;
        const std::optional<TextProblem> problem =
            text_check_.check(record.data + field.offset, field.length);
        if (!problem) continue;
        const std::int32_t in_record = field.offset + problem->position;
        fail(place(record) + "field " + fields_.name(field) + ", byte offset " +
             std::to_string(record.file_offset + static_cast<std::uint64_t>(in_record)) + " (" +
             std::to_string(in_record) + " in the record): " + problem->reason);
    }
}

}  // namespace command
