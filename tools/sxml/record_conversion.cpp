#include "tools/sxml/record_conversion.h"

#include <string_view>

#include "tools/sxml/document.h"
#include "tools/sxml/errors.h"
#include "tools/sxml/progress.h"

namespace command {

namespace {

// Records between looks at the clock and at the output's state.
constexpr std::uint64_t RECORDS_BETWEEN_LOOKS = 1024;

std::string hexadecimal(const std::uint8_t* bytes, std::int32_t length) {
    constexpr std::string_view DIGITS = "0123456789ABCDEF";
    std::string text;
    for (std::int32_t i = 0; i < length; ++i) {
        text += DIGITS[bytes[i] >> 4];
        text += DIGITS[bytes[i] & 0xF];
    }
    return text;
}

std::unique_ptr<conversion::OutputDocument> open_document(
    const records::Description& description, const conversion::CharacterSet& characters,
    const AtomicOutput& output) {
    return value_of(conversion::OutputDocument::open(
        description, characters, {output.write_name(), output.shown_name(), {}}));
}

}  // namespace

RecordConversion::RecordConversion(conversion::ByteSource& source,
                                   const records::Description& description,
                                   const conversion::CharacterSet& characters,
                                   const AtomicOutput& output)
    : source_(source),
      description_(description),
      output_(output),
      document_(open_document(description, characters, output)) {}

RecordConversion::~RecordConversion() {
    if (document_ && output_.is_direct()) document_->abandon();
}

void RecordConversion::run(conversion::RecordFormat format) {
    const auto record_length = static_cast<std::size_t>(description_.record_length());
    const auto reader = conversion::read_records(format, source_, record_length);
    Progress progress(source_.size());
    while (const std::optional<conversion::Record> record = value_of(reader->next())) {
        convert(*record);
        if (record->number % RECORDS_BETWEEN_LOOKS == 0) {
            progress.update(record->number, record->file_offset);
            check_written({&output_});
        }
    }
    check_written({&output_});
    document_.reset();
    check_written({&output_});
    finish();
}

void RecordConversion::convert(const conversion::Record& record) {
    conversion::Done problem = document_->write(record.data, description_.record_length());
    if (problem) {
        conversion::Place& place = problem->place;
        place.file = source_.name();
        place.record = record.number;
        if (place.in_record) place.byte_offset = record.file_offset + *place.in_record;
        if (problem->remedy == conversion::NAME_THE_CHARACTER_SET) {
            problem->remedy =
                "if the text is in another character set, name it: --encoding iso-8859-1, "
                "--encoding cp037";
        }
        fail(*problem);
    }
    for (const conversion::Field* field : document_->outcome().bad_numbers) {
        report_number(record, *field);
    }
}

void RecordConversion::report_number(const conversion::Record& record,
                                     const conversion::Field& field) {
    if (!bad_numbers_.wants_next()) return;
    warn(source_.name() + ": record " + std::to_string(record.number) + ", field " +
         fields().name(field.item) + " (byte offset " +
         std::to_string(record.file_offset + static_cast<std::uint64_t>(field.offset)) +
         ") holds no valid number: X'" + hexadecimal(record.data + field.offset, field.length) +
         "'");
}

void RecordConversion::finish() const {
    bad_numbers_.sum_up(source_.name(), "numeric field",
                        " held no valid number and came out repaired");
}

}  // namespace command
