#include "tools/sxml/check/record_diagnosis.h"

#include <algorithm>
#include <optional>

#include "conversion/fields/record_fields.h"
#include "conversion/fields/sliding_record.h"
#include "conversion/formats/format_detection.h"
#include "conversion/texts/text_check.h"
#include "records/field_types.h"
#include "records/numbers.h"
#include "tools/sxml/failure.h"

namespace command {

namespace {

using conversion::CharacterSet;
using conversion::Field;
using conversion::FieldKind;
using conversion::RecordFields;

using Bytes = std::span<const std::uint8_t>;
using Records = std::vector<Bytes>;

constexpr std::size_t FEWEST_RECORDS = 2;  // one alone may fit by chance
constexpr std::size_t LARGEST_START = 16;  // bytes before the first record
constexpr std::size_t HEADER = conversion::LengthHeader::MOST_BYTES;
constexpr std::size_t LONGEST = 4;  // times the length that the layout has

// What is taken for the layout's bytes: from byte `from` of the record on, those `by` bytes later.
struct Shift {
    std::int32_t from = 0;
    int by = 0;
};

// Judges records by their fields, in one interpretation.
class Judge {
  public:
    explicit Judge(Reading& reading)
        : xfd_(reading.description.xfd()),
          characters_(reading.characters),
          length_(static_cast<std::size_t>(reading.description.record_length())),
          fields_(value_of(RecordFields::of(xfd_))),
          texts_(characters_) {
        if (reading.description.slides()) {
            sliding_.emplace(reading.description, characters_.space());
        }
    }

    bool slides() const { return sliding_.has_value(); }

    std::size_t record_length() const { return length_; }
    const RecordFields& fields() const { return fields_; }

    // Whether every field of these records is right, and there is a number that could be wrong.
    bool all_fit(const Records& records, Shift shift = {}) {
        return records.size() >= FEWEST_RECORDS && all_right(records, shift) && has_number_;
    }
    // Whether every field is right, and texts are for the most part letters, digits and spaces.
    bool are_readable(const Records& records) {
        return all_right(records, {}) && letters_ * 5 >= characters_seen_ * 4 &&
               (has_number_ || characters_seen_ > 0);
    }
    // Where the last number ends that could be wrong.
    std::size_t end_of_numbers() const {
        std::int32_t end = 0;
        for (const conversion::RecordLayout& layout : fields_.layouts()) {
            for (const Field& field : layout.fields) {
                if (tells(field)) end = std::max(end, field.offset + field.length);
            }
        }
        return static_cast<std::size_t>(end);
    }
    // Every value of a binary number is right.
    bool tells(const Field& field) const {
        const std::int16_t type = xfd_.items[field.item].data.type;
        return is_numeric_type(type) && type <= records::PACKED_NO_SIGN &&
               field.kind != FieldKind::opaque;
    }

  private:
    bool all_right(const Records& records, Shift shift) {
        has_number_ = false;
        letters_ = characters_seen_ = 0;
        return std::all_of(records.begin(), records.end(),
                           [&](Bytes record) { return is_right(record, shift); });
    }

    bool is_right_spread(Bytes bytes) {
        if (sliding_->spread(bytes, fields_, xfd_, std::nullopt)) return false;
        record_.assign(sliding_->full(), sliding_->full() + length_);
        const std::optional<std::size_t> layout = fields_.choose(xfd_);
        if (!layout) return false;
        const auto& fields = fields_.layouts()[*layout].fields;
        return std::all_of(fields.begin(), fields.end(), [&](const Field& field) {
            return !conversion::condition_holds(xfd_, field.condition) ||
                   !sliding_->has_all(field.offset, field.length) || is_right(field);
        });
    }

    bool is_right(Bytes bytes, Shift shift) {
        if (sliding_) return is_right_spread(bytes);
        // Conditions may look at any byte of the layout.
        record_.assign(length_, characters_.space());
        const auto size = static_cast<std::int64_t>(bytes.size());
        for (std::size_t i = 0; i < length_; ++i) {
            const auto at = static_cast<std::int64_t>(i);
            const std::int64_t from = at < shift.from ? at : at + shift.by;
            if (from >= 0 && from < size) record_[i] = bytes[static_cast<std::size_t>(from)];
        }
        conversion::evaluate_conditions(xfd_, record_.data());
        const std::optional<std::size_t> layout = fields_.choose(xfd_);
        if (!layout) return false;
        const auto length = static_cast<std::int32_t>(
            std::min<std::int64_t>(size - shift.by, static_cast<std::int64_t>(length_)));
        const auto& fields = fields_.layouts()[*layout].fields;
        return std::all_of(fields.begin(), fields.end(), [&](const Field& field) {
            if (!conversion::condition_holds(xfd_, field.condition)) return true;
            // A number that is moved out of the record is not explained.
            if (field.offset + field.length > length) return shift.by == 0 || !tells(field);
            return is_right(field);
        });
    }

    bool is_right(const Field& field) {
        std::uint8_t* const bytes = record_.data() + field.offset;
        if (field.kind == FieldKind::opaque) return true;
        if (field.kind == FieldKind::text) {
            count_letters({bytes, static_cast<std::size_t>(field.length)});
            return !texts_.check(bytes, field.length);
        }
        XfdDataDesc data = xfd_.items[field.item].data;
        data.address = bytes;
        records::Decimal number;
        has_number_ = has_number_ || tells(field);
        return records::decode_field(data, number);
    }

    void count_letters(Bytes text) {
        for (const std::uint8_t byte : text) {
            if (byte == characters_.space() || byte == 0) continue;
            const std::int32_t code = characters_.is_utf8() ? byte : characters_.characters()[byte];
            const bool is_letter = (code >= 'a' && code <= 'z') || (code >= 'A' && code <= 'Z') ||
                                   (code >= '0' && code <= '9');
            ++characters_seen_;
            if (is_letter) ++letters_;
        }
    }

    Xfd& xfd_;
    const CharacterSet& characters_;
    std::size_t length_;
    RecordFields fields_;
    std::optional<conversion::SlidingRecord> sliding_;
    conversion::TextCheck texts_;
    std::vector<std::uint8_t> record_;
    bool has_number_ = false;
    std::size_t letters_ = 0;
    std::size_t characters_seen_ = 0;  // those that are not blank
};

// Records of one length, one after the other, with `gap` bytes after each.
Records regular_records(Bytes bytes, std::size_t start, std::size_t length, std::size_t gap) {
    Records records;
    for (std::size_t at = start; at + length <= bytes.size() && records.size() < RECORDS_LOOKED_AT;
         at += length + gap) {
        records.push_back(bytes.subspan(at, length));
    }
    return records;
}

// The lines of a file, without their ends; none when one is longer than a record.
Records lines_of(Bytes bytes, std::size_t longest) {
    Records lines;
    std::size_t start = 0;
    for (std::size_t at = 0; at < bytes.size() && lines.size() < RECORDS_LOOKED_AT; ++at) {
        if (bytes[at] != '\n') continue;
        const bool has_return = at > start && bytes[at - 1] == '\r';
        lines.push_back(bytes.subspan(start, at - start - (has_return ? 1 : 0)));
        if (lines.back().size() > longest) return {};
        start = at + 1;
    }
    return lines;
}

// Records of the layout's length with a line end after each: its length in bytes, or nothing.
std::optional<std::size_t> line_end_after(Bytes bytes, std::size_t length) {
    for (const std::size_t gap : {std::size_t{1}, std::size_t{2}}) {
        const Records records = regular_records(bytes, 0, length, gap);
        const bool has_ends = std::all_of(records.begin(), records.end(), [&](Bytes record) {
            const auto end = static_cast<std::size_t>(record.data() - bytes.data()) + length;
            if (end + gap > bytes.size()) return true;
            return bytes[end + gap - 1] == '\n' && (gap == 1 || bytes[end] == '\r');
        });
        if (records.size() >= FEWEST_RECORDS && has_ends) return gap;
    }
    return std::nullopt;
}

std::string reason_of_characters(const Records& records, Judge& own, std::span<Reading> others) {
    for (Reading& other : others) {
        Judge judge(other);
        if (!judge.are_readable(records)) continue;
        if (own.are_readable(records)) return {};
        return "the records seem to be in another character set; try --encoding " +
               other.characters.name();
    }
    return {};
}

std::string reason_of_line_ends(const RecordSample& sample, Judge& judge) {
    const std::size_t length = judge.record_length();
    if (const auto gap = line_end_after(sample.bytes, length)) {
        const bool fits = judge.all_fit(regular_records(sample.bytes, 0, length, *gap));
        return std::string("each record seems to be followed by a line end; ") +
               (fits ? "try --line, or transfer the file in binary"
                     : "transfer the file in binary, without line ends");
    }
    if (!judge.all_fit(lines_of(sample.bytes, length))) return {};
    return "the records seem to be lines; try --line";
}

bool may_be_length(const RecordSample& sample, std::size_t length) {
    return !sample.is_whole_file || sample.bytes.size() % length == 0;
}

std::string reason_of_length(const RecordSample& sample, Judge& judge) {
    const std::size_t described = judge.record_length();
    const auto fits = [&](std::size_t length) {
        return may_be_length(sample, length) &&
               judge.all_fit(regular_records(sample.bytes, 0, length, 0));
    };
    const auto sentence = [&](std::size_t length, const char* remedy) {
        return "the records seem to be " + std::to_string(length) + " bytes long, the layout has " +
               std::to_string(described) + "; " + remedy;
    };
    // A shorter record must have all numbers that could be wrong.
    const std::size_t shortest = std::max<std::size_t>(judge.end_of_numbers(), 1);
    for (std::size_t by = 1; by <= (LONGEST - 1) * described + HEADER; ++by) {
        if (fits(described + by)) {
            return sentence(described + by,
                            "add the missing bytes to the layout, as FILLER if need be");
        }
        if (described >= shortest + by && fits(described - by)) {
            return sentence(described - by, "take the last bytes out of the layout");
        }
    }
    return {};
}

// A field that is a byte too long or too short moves all that follow.
std::string reason_of_shift(const RecordSample& sample, Judge& judge) {
    const std::size_t described = judge.record_length();
    for (const conversion::RecordLayout& layout : judge.fields().layouts()) {
        // The last field from which on it fits is the first one that is wrong.
        for (auto field = layout.fields.rbegin(); field != layout.fields.rend(); ++field) {
            for (const int by : {1, -1}) {
                const Shift shift{field->offset, by};
                const std::size_t moved = by > 0 ? described + 1 : described - 1;
                for (const std::size_t length : {moved, described}) {
                    if (length == 0 || !may_be_length(sample, length)) continue;
                    const Records records = regular_records(sample.bytes, 0, length, 0);
                    if (!judge.all_fit(records, shift)) continue;
                    return "the fields from " + judge.fields().name(field->item) +
                           " on seem to lie one byte " + (by > 0 ? "later" : "earlier") +
                           " than the layout says; correct the length of what is before them";
                }
            }
        }
    }
    return {};
}

std::string reason_of_start(const RecordSample& sample, Judge& judge) {
    for (std::size_t start = 1; start <= LARGEST_START; ++start) {
        const Records records = regular_records(sample.bytes, start, judge.record_length(), 0);
        if (!judge.all_fit(records)) continue;
        return "the records seem to begin " + std::to_string(start) +
               (start == 1 ? " byte" : " bytes") +
               " into the file; cut the bytes before them, or correct the layout";
    }
    return {};
}

}  // namespace

std::size_t sample_size(std::size_t record_length) {
    constexpr std::size_t LARGEST = std::size_t{1} << 20;
    return std::min(LARGEST, RECORDS_LOOKED_AT * (LONGEST * record_length + HEADER));
}

std::string reason_for_misfit(const RecordSample& sample, Reading& own, std::span<Reading> others) {
    Judge judge(own);
    const Records records(sample.records.begin(), sample.records.end());
    std::string reason = reason_of_characters(records, judge, others);
    if (!reason.empty() || judge.all_fit(records)) return reason;
    if (!sample.is_fixed) {
        const bool fits = judge.all_fit(regular_records(sample.bytes, 0, judge.record_length(), 0));
        return fits ? "the records seem to be of fixed length; try --record-format fixed" : "";
    }
    const conversion::FileStart start{sample.bytes, sample.is_whole_file,
                                      LONGEST * judge.record_length()};
    if (const auto format = conversion::format_with_lengths(start)) {
        return "each record seems to be preceded by its length; try --record-format " +
               format->name + ", with a layout as long as the longest record";
    }
    if (judge.slides()) return {};
    using Reason = std::string (*)(const RecordSample&, Judge&);
    for (const Reason find :
         {&reason_of_line_ends, &reason_of_length, &reason_of_shift, &reason_of_start}) {
        reason = find(sample, judge);
        if (!reason.empty()) return reason;
    }
    return {};
}

}  // namespace command
