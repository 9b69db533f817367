#include "tools/sxml/dump/record_table.h"

#include <algorithm>
#include <limits>

#include "records/hexadecimal.h"
#include "tools/sxml/failure.h"
#include "tools/sxml/reports/field_value.h"

namespace command {

namespace {

using conversion::CharacterSet;
using conversion::Field;
using conversion::FieldKind;
using conversion::Record;
using conversion::RecordFields;
using conversion::RecordLayout;

constexpr std::size_t BYTES_IN_A_LINE = 16;

// What the source says of each field's form, by the element's name.
std::map<std::string, std::string> pictures_of(const records::Description& description) {
    std::map<std::string, std::string> pictures;
    for (const records::Description::Row& row : description.rows()) {
        std::string text = row.picture;
        if (row.usage != "DISPLAY") text += (text.empty() ? "" : " ") + row.usage;
        if (!row.xml_name.empty()) pictures.emplace(row.xml_name, text);
    }
    return pictures;
}

std::string padded(const std::string& text, std::size_t width, bool right = false) {
    const std::string padding(width > text.size() ? width - text.size() : 0, ' ');
    return right ? padding + text : text + padding;
}

}  // namespace

RecordTable::RecordTable(records::Description& description, const CharacterSet& characters)
    : xfd_(description.xfd()),
      characters_(characters),
      fields_(value_of(RecordFields::of(description.xfd()))),
      completed_(characters),
      pictures_(pictures_of(description)) {
    if (description.slides()) sliding_.emplace(description, characters.space());
    for (const RecordLayout& layout : fields_.layouts()) {
        for (const Field& field : layout.fields) {
            name_width_ = std::max(name_width_, fields_.name(field.item).size());
            picture_width_ = std::max(picture_width_, picture_of(field).size());
        }
    }
}

std::string RecordTable::of(const Record& record) {
    conversion::Done problem;
    records::set_position(xfd_, record.position());
    if (sliding_) {
        problem = sliding_->spread({record.data, record.length}, fields_, xfd_, std::nullopt);
    } else {
        conversion::evaluate_conditions(xfd_, record.data);
    }
    const std::optional<std::size_t> chosen = fields_.choose(xfd_);
    std::string text = "Record " + std::to_string(record.number) + ", byte offset " +
                       std::to_string(record.file_offset) + ", " + std::to_string(record.length) +
                       " bytes";
    const std::vector<RecordLayout>& layouts = fields_.layouts();
    if (layouts.empty()) return text + "\n";
    const RecordLayout& layout = layouts[chosen.value_or(0)];
    if (layouts.size() > 1 && chosen) text += ", " + layout.name;
    if (!chosen) text += ", of no layout; shown as " + layout.name;
    whole_ = {record.data, record.length};
    if (!sliding_ && chosen) {
        (void)completed_.complete(whole_, layout, xfd_);
        whole_ = {completed_.data(), static_cast<std::size_t>(completed_.length())};
    }
    if (problem) text += ", " + problem->place.field + ": " + problem->what;
    return text + "\n" + line("Offset", "Bytes", "Field", "Picture", "Value") +
           lines_of(layout, record, !chosen);
}

const std::string& RecordTable::picture_of(const Field& field) const {
    static const std::string none;
    const auto found = pictures_.find(xfd_.items[field.item].name);
    return found == pictures_.end() ? none : found->second;
}

std::string RecordTable::line(const std::string& offset, const std::string& bytes,
                              const std::string& name, const std::string& picture,
                              const std::string& value) const {
    const std::string text =
        padded(offset, 6, true) + "  " + padded(bytes, BYTES_IN_A_LINE * 3 - 1) + "  " +
        padded(name, name_width_) + "  " + padded(picture, picture_width_) + "  " + value;
    return text.substr(0, text.find_last_not_of(' ') + 1) + "\n";
}

// The fields of a record in the order of their bytes, and the bytes between them.
std::string RecordTable::lines_of(const RecordLayout& layout, const Record& record,
                                  bool takes_all) const {
    std::vector<Field> shown;
    const auto length = sliding_ ? std::numeric_limits<std::int32_t>::max()
                                 : static_cast<std::int32_t>(whole_.size());
    const auto end_of_record = static_cast<std::int32_t>(record.length);
    std::copy_if(layout.fields.begin(), layout.fields.end(), std::back_inserter(shown),
                 [&](const Field& field) {
                     return takes_all ? field.offset + field.length <= length
                                      : conversion::holds_data(field, xfd_, length);
                 });
    if (sliding_) {
        std::erase_if(shown, [this](const Field& field) {
            return !sliding_->has_all(field.offset, field.length);
        });
        for (Field& field : shown) field.offset = sliding_->packed_offset(field.offset);
    } else {
        std::erase_if(shown, [=](const Field& field) { return field.offset >= end_of_record; });
    }
    std::stable_sort(shown.begin(), shown.end(),
                     [](const Field& a, const Field& b) { return a.offset < b.offset; });
    std::string text;
    std::size_t end = 0;
    for (const Field& field : shown) {
        const auto offset = static_cast<std::size_t>(field.offset);
        if (offset > end) text += unnamed_bytes(record, end, offset);
        text += field_lines(record, field);
        end =
            std::min(std::max(end, offset + static_cast<std::size_t>(field.length)), record.length);
    }
    if (end < record.length) text += unnamed_bytes(record, end, record.length);
    return text;
}

std::string RecordTable::unnamed_bytes(const Record& record, std::size_t from,
                                       std::size_t to) const {
    return byte_lines({record.data + from, to - from}, from, "(no field)", "", "");
}

// Of a field that the record's end cuts, the bytes that are there.
std::string RecordTable::field_lines(const Record& record, const Field& field) const {
    const auto offset = static_cast<std::size_t>(field.offset);
    const auto size = static_cast<std::size_t>(field.length);
    const std::span<const std::uint8_t> bytes(record.data + offset,
                                              std::min(size, record.length - offset));
    return byte_lines(bytes, offset, fields_.name(field.item), picture_of(field),
                      value_of_field(field, whole_.subspan(offset, size)));
}

std::string RecordTable::value_of_field(const Field& field,
                                        std::span<const std::uint8_t> bytes) const {
    switch (field.kind) {
        case FieldKind::text:
            return shown_text(bytes, characters_,
                              conversion::text_form(xfd_.items[field.item], characters_));
        case FieldKind::opaque:
            return "";
        default:
            return shown_number(xfd_.items[field.item].data, bytes.data()).value_or("not a number");
    }
}

std::string RecordTable::byte_lines(std::span<const std::uint8_t> bytes, std::size_t offset,
                                    const std::string& name, const std::string& picture,
                                    const std::string& value) const {
    std::string text;
    for (std::size_t at = 0; at < bytes.size() || at == 0; at += BYTES_IN_A_LINE) {
        const auto part = bytes.subspan(at, std::min(BYTES_IN_A_LINE, bytes.size() - at));
        const bool is_first = at == 0;
        text += line(std::to_string(offset + at), records::hexadecimal(part, " "),
                     is_first ? name : "", is_first ? picture : "", is_first ? value : "");
    }
    return text;
}

}  // namespace command
