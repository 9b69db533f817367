#include "tools/sxml/check/field_statistics.h"

#include <algorithm>
#include <span>
#include <string_view>

#include "records/field_types.h"
#include "tools/sxml/failure.h"
#include "tools/sxml/reports/field_value.h"

namespace command {

namespace {

using conversion::Field;
using conversion::FieldFate;
using conversion::FieldKind;
using conversion::RecordFields;
using conversion::RecordLayout;

bool is_number(FieldKind kind) {
    return kind == FieldKind::display_number || kind == FieldKind::other_number;
}

bool is_zero(const records::Decimal& number) {
    return std::all_of(number.digits.begin(), number.digits.begin() + number.count,
                       [](std::uint8_t digit) { return digit == 0; });
}

// Whether a text that is not all blank begins with a blank of two bytes.
bool starts_blank(std::span<const std::uint8_t> text, conversion::TextBlank blank) {
    const auto is_blank_at = [text, blank](std::size_t at) {
        return text[at] == blank.first && text[at + 1] == blank.second;
    };
    if (text.size() < 2 || !is_blank_at(0)) return false;
    std::size_t at = 0;
    while (at + 1 < text.size() && is_blank_at(at)) at += 2;
    return at + 1 < text.size();
}

}  // namespace

FieldStatistics::FieldStatistics(records::Description& description,
                                 const conversion::CharacterSet& characters)
    : description_(description),
      characters_(characters),
      fields_(value_of(RecordFields::of(description.xfd()))),
      completed_(characters),
      texts_(characters),
      records_(fields_.layouts().size()) {
    if (description.slides()) sliding_.emplace(description, characters.space());
    std::map<std::pair<std::string, std::string>, std::size_t> known;
    for (const RecordLayout& layout : fields_.layouts()) {
        for (const Field& field : layout.fields) {
            const std::pair name(layout.name, fields_.path(field.item));
            const auto [found, is_new] = known.emplace(name, rows_.size());
            row_of_item_.emplace(field.item, found->second);
            if (!is_new) continue;
            Row row;
            row.counts.layout = name.first;
            row.counts.path = name.second;
            row.counts.is_number = is_number(field.kind);
            rows_.push_back(std::move(row));
        }
    }
}

std::size_t FieldStatistics::choose(const std::uint8_t* record) {
    conversion::evaluate_conditions(description_.xfd(), record);
    const std::optional<std::size_t> chosen = fields_.choose(description_.xfd());
    is_of_a_layout_ = chosen.has_value();
    ++(chosen ? records_[*chosen] : of_no_layout_);
    return chosen.value_or(0);
}

// The bytes that the layout's offsets are for; where tables slide, all of their entries.
const std::uint8_t* FieldStatistics::spread(std::span<const std::uint8_t> record) {
    if (!sliding_) return record.data();
    // The conversion reports errors in its counters.
    (void)sliding_->spread(record, fields_, description_.xfd(), std::nullopt);
    return sliding_->full();
}

bool FieldStatistics::holds_data(const Field& field, std::int32_t length) const {
    return conversion::holds_data(field, description_.xfd(), length) &&
           (!sliding_ || sliding_->has_all(field.offset, field.length));
}

std::int32_t FieldStatistics::used_length(std::span<const std::uint8_t> record) const {
    if (sliding_) return description_.record_length();
    return description_.used_length(record.data(), static_cast<std::int32_t>(record.size()),
                                    position_);
}

void FieldStatistics::add(const conversion::Record& record) {
    const std::span<const std::uint8_t> read(record.data, record.length);
    position_ = record.position();
    records::set_position(description_.xfd(), position_);
    const std::uint8_t* whole = spread(read);
    const RecordLayout& layout = fields_.layouts()[choose(whole)];
    std::int32_t length = used_length(read);
    if (!sliding_) {
        // The conversion reports half a character at the end.
        (void)completed_.complete(read.first(static_cast<std::size_t>(length)), layout,
                                  description_.xfd());
        whole = completed_.data();
        length = completed_.length();
    }
    for (const Field& field : layout.fields) {
        if (!holds_data(field, length)) continue;
        Row& row = row_of(field);
        ++row.counts.count;
        const std::uint8_t* const bytes = whole + field.offset;
        if (field.kind == FieldKind::text && has_problem(field, bytes)) {
            ++row.counts.invalid;
        } else {
            add_value(row, field, bytes);
            if (field.kind == FieldKind::text) note_shifted(record, field, bytes);
        }
    }
    // All other bytes of a record without a layout are lost; that is reported separately.
    if (is_of_a_layout_) add_unnamed(record, layout, length);
}

bool FieldStatistics::has_problem(const Field& field, const std::uint8_t* bytes) const {
    const XfdItem& item = description_.xfd().items[field.item];
    return texts_.check(bytes, field.length, conversion::text_form(item, characters_)).has_value();
}

void FieldStatistics::add(const conversion::InputDocument& document) {
    position_ = document.position();
    records::set_position(description_.xfd(), position_);
    const std::uint8_t* const record = spread(document.record());
    const RecordLayout& layout = fields_.layouts()[choose(record)];
    const std::int32_t length = used_length(document.record());
    for (const Field& field : layout.fields) {
        if (!holds_data(field, length)) continue;
        Row& row = row_of(field);
        ++row.counts.count;
        const FieldFate fate = document.fate(field.item);
        if (fate == FieldFate::not_in_document) ++row.counts.blank;
        const bool is_cut = fate == FieldFate::cut || fate == FieldFate::cut_number;
        if (is_cut) ++row.counts.cut;
        if (fate == FieldFate::no_number || fate == FieldFate::no_digits ||
            fate == FieldFate::lost_character) {
            ++row.counts.invalid;
        }
        if (fate == FieldFate::filled || is_cut) {
            add_value(row, field, record + field.offset);
        }
    }
}

void FieldStatistics::add_value(Row& row, const Field& field, const std::uint8_t* bytes) {
    if (is_number(field.kind)) return add_number(row, field, bytes);
    if (field.kind == FieldKind::text) return add_text(row, field, bytes);
    const bool has_data = std::any_of(bytes, bytes + field.length,
                                      [this](std::uint8_t byte) { return !is_blank(byte); });
    if (!has_data) ++row.counts.blank;
}

void FieldStatistics::add_number(Row& row, const Field& field, const std::uint8_t* bytes) {
    XfdDataDesc data = description_.xfd().items[field.item].data;
    data.address = const_cast<std::uint8_t*>(bytes);
    records::Decimal number;
    const bool is_valid = records::decode_field(data, number);
    // A binary zero is a number, and so are other values that look like blanks.
    const bool has_value = is_valid && !is_zero(number);
    const bool has_data =
        has_value || std::any_of(bytes, bytes + field.length, [&](std::uint8_t byte) {
            return is_valid ? byte != characters_.space() : !is_blank(byte);
        });
    if (!has_data) ++row.counts.blank;
    if (!is_valid) {
        ++row.counts.invalid;
        return;
    }
    if (is_zero(number)) ++row.counts.zero;
    if (!row.smallest || records::compare(number, *row.smallest) < 0) {
        row.smallest = number;
        row.counts.smallest = shown_number(data, bytes).value_or("");
    }
    if (!row.largest || records::compare(number, *row.largest) > 0) {
        row.largest = number;
        row.counts.largest = shown_number(data, bytes).value_or("");
    }
}

void FieldStatistics::add_text(Row& row, const Field& field, const std::uint8_t* bytes) {
    row.form = conversion::text_form(description_.xfd().items[field.item], characters_);
    const conversion::TextBlank blank = conversion::blank_of(row.form, characters_);
    const std::size_t width = row.form == conversion::TextForm::plain ? 1 : 2;
    auto length = static_cast<std::size_t>(field.length);
    const auto ends_blank = [&] {
        const std::uint8_t first = bytes[length - width];
        const std::uint8_t last = bytes[length - 1];
        return (first == 0 && last == 0) || (first == blank.first && last == blank.second);
    };
    while (length >= width && ends_blank()) length -= width;
    if (length == 0) {
        ++row.counts.blank;
        return;
    }
    row.counts.longest = std::max(row.counts.longest, length);
    const std::string_view text(reinterpret_cast<const char*>(bytes), length);
    if (!row.first || text < *row.first) row.first = text;
    if (!row.last || text > *row.last) row.last = text;
}

void FieldStatistics::note_shifted(const conversion::Record& record, const Field& field,
                                   const std::uint8_t* bytes) {
    const XfdItem& item = description_.xfd().items[field.item];
    const records::FieldEdges edges = records::field_extra(item.data).edges;
    if (edges.is_right != 0 || edges.blanks != 0) return;
    const auto text = std::span(bytes, static_cast<std::size_t>(field.length));
    const conversion::TextForm form = conversion::text_form(item, characters_);
    const bool is_kept = form == conversion::TextForm::plain
                             ? keeps_edges(text)
                             : !starts_blank(text, conversion::blank_of(form, characters_));
    if (is_kept || shifted_.count++ > 0) return;
    shifted_.first_record = record.number;
    shifted_.first_offset = record.file_offset + static_cast<std::uint64_t>(field.offset);
    shifted_.first_field = fields_.name(field.item);
}

bool FieldStatistics::keeps_edges(std::span<const std::uint8_t> text) const {
    const auto is_text = [this](std::uint8_t byte) { return !is_blank(byte); };
    const auto last = std::find_if(text.rbegin(), text.rend(), is_text);
    if (last == text.rend()) return true;
    return !is_blank(text.front()) && !is_white(text.front()) && !is_white(*last);
}

// Tabs and line ends.
bool FieldStatistics::is_white(std::uint8_t byte) const {
    const std::string_view white = characters_.is_ebcdic() ? "\x05\x0D\x15\x25" : "\t\r\n";
    return white.find(static_cast<char>(byte)) != std::string_view::npos;
}

// Entries beyond a table's counter are not in the record.
void FieldStatistics::add_unnamed(const conversion::Record& record, const RecordLayout& layout,
                                  std::int32_t length) {
    const auto size = std::min(record.length, static_cast<std::size_t>(length));
    named_.assign(static_cast<std::size_t>(description_.record_length()), 0);
    for (const Field& field : layout.fields) {
        if (!holds_data(field, length)) continue;
        const std::int32_t offset = sliding_ ? sliding_->packed_offset(field.offset) : field.offset;
        std::fill_n(named_.begin() + offset, field.length, std::uint8_t{1});
    }
    const std::uint64_t before = unnamed_.bytes;
    for (std::size_t i = 0; i < size; ++i) {
        if (named_[i] != 0 || is_blank(record.data[i])) continue;
        if (unnamed_.bytes++ > 0) continue;
        unnamed_.first_record = record.number;
        unnamed_.first_offset = record.file_offset + i;
    }
    if (unnamed_.bytes > before) ++unnamed_.records;
}

std::vector<FieldCounts> FieldStatistics::fields() const {
    const auto shown = [this](const std::string& text, conversion::TextForm form) {
        const std::string quoted = shown_text(bytes_of(text), characters_, form);
        return quoted.substr(1, quoted.size() - 2);
    };
    std::vector<FieldCounts> all;
    for (const Row& row : rows_) {
        FieldCounts counts = row.counts;
        if (row.first) counts.smallest = shown(*row.first, row.form);
        if (row.last) counts.largest = shown(*row.last, row.form);
        all.push_back(std::move(counts));
    }
    return all;
}

std::vector<std::pair<std::string, std::uint64_t>> FieldStatistics::layouts() const {
    std::vector<std::pair<std::string, std::uint64_t>> all;
    for (std::size_t i = 0; i < records_.size(); ++i) {
        all.emplace_back(fields_.layouts()[i].name, records_[i]);
    }
    return all;
}

}  // namespace command
