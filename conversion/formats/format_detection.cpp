#include "conversion/formats/format_detection.h"

#include <algorithm>

namespace conversion {

namespace {

bool is_text(std::uint8_t byte) {
    return byte >= ' ' || byte == '\t' || byte == '\f';
}

// What a file would be in a format.
struct Chain {
    std::size_t records = 0;  // 0: it is not in the format
    bool is_text = false;     // a header could be characters
    bool is_fixed = true;     // each with its header is as long as a record of the layout
};

// Takes the records of a file, as far as its bytes go.
class ChainWalk {
  public:
    ChainWalk(const RecordFormat& format, const FileStart& start)
        : header_(format.header),
          has_blocks_(format.kind == RecordFormat::Kind::blocks),
          start_(start) {}

    Chain walk() {
        while (left() > 0) {
            if (has_blocks_ && block_left_ == 0 && !take_block()) return {};
            if (left() < header_.size) return start_.is_whole ? Chain{} : chain_;
            if (!take_record()) return {};
        }
        const bool is_complete = left() == 0 && !has_open_record_ && block_left_ == 0;
        return is_complete || !start_.is_whole ? chain_ : Chain{};
    }

  private:
    std::size_t left() const {
        return position_ < start_.bytes.size() ? start_.bytes.size() - position_ : 0;
    }

    bool take_block() {
        if (left() < BLOCK_HEADER) return !start_.is_whole;
        const std::optional<std::size_t> payload = block_payload(&start_.bytes[position_]);
        if (!payload) return false;
        position_ += BLOCK_HEADER;
        block_left_ = *payload;
        return true;
    }

    bool take_record() {
        const std::uint8_t* const bytes = &start_.bytes[position_];
        const std::optional<Segment> segment = header_.segment_in(bytes);
        const std::optional<std::size_t> payload = header_.payload(header_.length_in(bytes));
        if (!segment || !payload || *payload == 0 || *payload > start_.record_length) return false;
        const bool begins = *segment == Segment::whole || *segment == Segment::first;
        if (begins == has_open_record_) return false;
        has_open_record_ = *segment == Segment::first || *segment == Segment::middle;
        const std::size_t size = header_.size + *payload;
        if (has_blocks_ && size > block_left_) return false;
        if (has_blocks_) block_left_ -= size;
        if (size > left() && start_.is_whole) return false;
        position_ += size;
        chain_.records += begins ? 1 : 0;
        chain_.is_text = chain_.is_text || std::all_of(bytes, bytes + header_.size, is_text);
        chain_.is_fixed = chain_.is_fixed && !has_blocks_ && size == start_.record_length;
        return true;
    }

    LengthHeader header_;
    bool has_blocks_;
    const FileStart& start_;
    std::size_t position_ = 0;
    std::size_t block_left_ = 0;
    bool has_open_record_ = false;
    Chain chain_;
};

// Whether the start may be that of records of the layout's length.
bool may_be_fixed(const FileStart& start) {
    return !start.is_whole || start.bytes.size() % start.record_length == 0;
}

// Lines of text, of which none is longer than a record of the layout.
bool are_lines(const FileStart& start) {
    std::size_t length = 0;
    std::size_t lines = 0;
    for (const std::uint8_t byte : start.bytes) {
        if (byte == '\n') {
            ++lines;
            length = 0;
        } else if (byte != '\r' && (!is_text(byte) || ++length > start.record_length)) {
            return false;
        }
    }
    return lines > 0;
}

// Records of the layout's length with a line feed as their last byte.
bool hold_their_line_ends(const FileStart& start) {
    return may_be_fixed(start) && start.bytes.size() >= start.record_length &&
           start.bytes[start.record_length - 1] == '\n';
}

}  // namespace

std::optional<RecordFormat> format_with_lengths(const FileStart& start) {
    for (const RecordFormat& format : RecordFormat::with_lengths()) {
        const Chain chain = ChainWalk(format, start).walk();
        if (chain.records == 0) continue;
        if (!may_be_fixed(start)) return format;
        // What could be records of fixed length needs more to be taken for others: several headers,
        // and of those that have no zero bytes many that are not characters.
        const bool has_zeros = format.header.size > 2;
        const std::size_t fewest = has_zeros ? 2 : 8;
        if (!has_zeros && chain.is_text) continue;
        if (chain.records >= fewest && !chain.is_fixed) return format;
    }
    return std::nullopt;
}

bool may_have_lengths(const FileStart& start) {
    const std::vector<RecordFormat>& formats = RecordFormat::with_lengths();
    return std::any_of(formats.begin(), formats.end(), [&start](const RecordFormat& format) {
        return ChainWalk(format, start).walk().records > 0;
    });
}

Result<RecordFormat> detect_format(ByteSource& source, std::size_t record_length) {
    const std::size_t wanted = std::max(LOOKED_AT, record_length);
    const auto peeked = source.peek(wanted);
    if (!peeked) return peeked.problem();
    const std::span<const std::uint8_t> bytes = *peeked;
    const FileStart start{bytes, bytes.size() < wanted, record_length};
    if (start.bytes.empty()) return RecordFormat{};
    if (const auto format = format_with_lengths(start)) return *format;
    if (are_lines(start) && !hold_their_line_ends(start)) return RecordFormat::find("line");
    const auto size = source.size();
    const bool is_multiple = !size || (*size - source.offset()) % record_length == 0;
    if (may_be_fixed(start) && is_multiple) return RecordFormat{};
    Place place;
    place.file = source.name();
    return Problem{Cause::record, place, "the file fits the layout in none of the record formats",
                   "the layout is not the file's, or other data precedes or follows the records"};
}

}  // namespace conversion
