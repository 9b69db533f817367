#include "tools/sxml/record_table.h"

#include <algorithm>
#include <array>

#include "conversion/texts/utf8.h"
#include "records/numbers.h"
#include "tools/sxml/errors.h"

namespace command {

namespace {

using conversion::CharacterSet;
using conversion::Field;
using conversion::FieldKind;
using conversion::Record;
using conversion::RecordFields;
using conversion::RecordLayout;

constexpr std::size_t BYTES_IN_A_LINE = 16;
constexpr std::size_t LONGEST_NUMBER = 512;  // characters

// Hexadecimal digits, two a byte, the bytes apart.
std::string hexadecimal(std::span<const std::uint8_t> bytes) {
    constexpr std::string_view DIGITS = "0123456789ABCDEF";
    std::string text;
    for (const std::uint8_t byte : bytes) {
        if (!text.empty()) text += ' ';
        text += DIGITS[byte >> 4];
        text += DIGITS[byte & 0xF];
    }
    return text;
}

bool is_control(char32_t code) {
    return code < 0x20 || (code >= 0x7F && code < 0xA0);
}

// A text in UTF-8, in quotation marks, without the spaces at its end. A dot stands for what cannot
// be shown.
std::string shown_text(std::span<const std::uint8_t> bytes, const CharacterSet& characters) {
    std::string text = "'";
    while (!bytes.empty() && bytes.back() == characters.space()) {
        bytes = bytes.first(bytes.size() - 1);
    }
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const std::size_t width = characters.is_utf8() ? conversion::utf8_character_length(
                                                             bytes.data() + i, bytes.size() - i)
                                                       : 0;
        if (width > 0) {
            text.append(reinterpret_cast<const char*>(bytes.data()) + i, width);
            i += width - 1;
            continue;
        }
        const bool is_ascii = bytes[i] < 0x80;
        const std::int32_t code =
            characters.is_utf8() ? (is_ascii ? bytes[i] : -1) : characters.characters()[bytes[i]];
        if (code < 0 || is_control(static_cast<char32_t>(code))) {
            text += '.';
        } else {
            conversion::append_utf8(static_cast<char32_t>(code), text);
        }
    }
    return text + "'";
}

std::string shown_number(const XfdDataDesc& field, const std::uint8_t* bytes) {
    XfdDataDesc source = field;
    source.address = const_cast<std::uint8_t*>(bytes);
    records::Decimal number;
    if (!records::decode_field(source, number)) return "not a number";
    std::array<char, LONGEST_NUMBER> text{};
    XfdDataDesc target{text.data(), static_cast<std::int32_t>(text.size()), 0, 0, field.scale, {}};
    if (Qconvert(&target, &source, 1) == 0) return "not a number";
    const std::string_view value(text.data(), text.size());
    const std::size_t start = value.find_first_not_of(' ');
    const std::size_t end = value.find_last_not_of(' ');
    return start == std::string_view::npos ? "" : std::string(value.substr(start, end + 1 - start));
}

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
      pictures_(pictures_of(description)) {
    for (const RecordLayout& layout : fields_.layouts()) {
        for (const Field& field : layout.fields) {
            name_width_ = std::max(name_width_, fields_.name(field.item).size());
            picture_width_ = std::max(picture_width_, picture_of(field).size());
        }
    }
}

std::string RecordTable::of(const Record& record) {
    conversion::evaluate_conditions(xfd_, record.data);
    const std::optional<std::size_t> chosen = fields_.choose(xfd_);
    std::string text = "Record " + std::to_string(record.number) + ", byte offset " +
                       std::to_string(record.file_offset) + ", " + std::to_string(record.length) +
                       " bytes";
    const std::vector<RecordLayout>& layouts = fields_.layouts();
    if (layouts.empty()) return text + "\n";
    const RecordLayout& layout = layouts[chosen.value_or(0)];
    if (layouts.size() > 1 && chosen) text += ", " + layout.name;
    if (!chosen) text += ", of no layout; shown as " + layout.name;
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
    const auto length = static_cast<std::int32_t>(record.length);
    std::copy_if(layout.fields.begin(), layout.fields.end(), std::back_inserter(shown),
                 [&](const Field& field) {
                     return takes_all ? field.offset + field.length <= length
                                      : conversion::holds_data(field, xfd_, length);
                 });
    std::stable_sort(shown.begin(), shown.end(),
                     [](const Field& a, const Field& b) { return a.offset < b.offset; });
    std::string text;
    std::size_t end = 0;
    for (const Field& field : shown) {
        const auto offset = static_cast<std::size_t>(field.offset);
        if (offset > end) text += unnamed_bytes(record, end, offset);
        text += field_lines(record, field);
        end = std::max(end, offset + static_cast<std::size_t>(field.length));
    }
    if (end < record.length) text += unnamed_bytes(record, end, record.length);
    return text;
}

std::string RecordTable::unnamed_bytes(const Record& record, std::size_t from,
                                       std::size_t to) const {
    return byte_lines({record.data + from, to - from}, from, "(no field)", "", "");
}

std::string RecordTable::field_lines(const Record& record, const Field& field) const {
    const std::span<const std::uint8_t> bytes(record.data + field.offset,
                                              static_cast<std::size_t>(field.length));
    return byte_lines(bytes, static_cast<std::size_t>(field.offset), fields_.name(field.item),
                      picture_of(field), value_of_field(field, bytes));
}

std::string RecordTable::value_of_field(const Field& field,
                                        std::span<const std::uint8_t> bytes) const {
    switch (field.kind) {
        case FieldKind::text:
            return shown_text(bytes, characters_);
        case FieldKind::opaque:
            return "";
        default:
            return shown_number(xfd_.items[field.item].data, bytes.data());
    }
}

std::string RecordTable::byte_lines(std::span<const std::uint8_t> bytes, std::size_t offset,
                                    const std::string& name, const std::string& picture,
                                    const std::string& value) const {
    std::string text;
    for (std::size_t at = 0; at < bytes.size() || at == 0; at += BYTES_IN_A_LINE) {
        const auto part = bytes.subspan(at, std::min(BYTES_IN_A_LINE, bytes.size() - at));
        const bool is_first = at == 0;
        text += line(std::to_string(offset + at), hexadecimal(part), is_first ? name : "",
                     is_first ? picture : "", is_first ? value : "");
    }
    return text;
}

}  // namespace command
