#include "conversion/formats/headed_records.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "records/hexadecimal.h"

namespace conversion {

namespace {

constexpr std::size_t BUFFER_SIZE = std::size_t{1} << 20;
// Of the segments of a record that its header's length cannot tell: as mainframes make them.
constexpr std::size_t LARGEST_SEGMENT = 32756;

std::string bytes_text(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " byte" : " bytes");
}

class HeadedRecordReader : public RecordReader {
  public:
    HeadedRecordReader(const RecordFormat& format, ByteSource& source, RecordArea area)
        : source_(source),
          header_(format.header),
          has_blocks_(format.kind == RecordFormat::Kind::blocks),
          fill_(area.fill),
          size_(std::max(BUFFER_SIZE, area.length + LengthHeader::MOST_BYTES)),
          buffer_(std::make_unique_for_overwrite<std::uint8_t[]>(size_)),
          buffer_offset_(source.offset()),
          record_(area.length, area.fill) {}

    Result<std::optional<Record>> next() override {
        start_ = offset();
        Result<std::optional<Part>> part = next_part();
        if (!part) return part.problem();
        if (!*part) return std::optional<Record>();
        if (is_continuation((*part)->segment)) return out_of_order((*part)->segment);
        const std::uint64_t file_offset = (*part)->offset;
        const bool is_whole = (*part)->segment == Segment::whole;
        ++count_;
        if (is_whole && (*part)->length == record_.size()) {
            return std::optional(Record{(*part)->data, (*part)->length, count_, file_offset});
        }
        std::size_t length = 0;
        keep(**part, length);
        if (!is_whole) {
            if (const Done problem = read_rest(length)) return *problem;
        }
        if (length < used_) std::fill_n(record_.begin() + to_signed(length), used_ - length, fill_);
        used_ = length;
        return std::optional(Record{record_.data(), length, count_, file_offset});
    }

  private:
    // A record or a segment of one, in the buffer.
    struct Part {
        const std::uint8_t* data;
        std::size_t length;
        Segment segment;
        std::uint64_t offset;  // of its data in the file
    };

    static std::ptrdiff_t to_signed(std::size_t value) {
        return static_cast<std::ptrdiff_t>(value);
    }
    static bool is_continuation(Segment segment) {
        return segment == Segment::middle || segment == Segment::last;
    }
    std::uint64_t offset() const { return buffer_offset_ + position_; }

    void keep(const Part& part, std::size_t& length) {
        std::memcpy(record_.data() + length, part.data, part.length);
        length += part.length;
        used_ = std::max(used_, length);
    }

    // The segments after the first.
    Done read_rest(std::size_t& length) {
        for (;;) {
            start_ = offset();
            const Result<std::optional<Part>> part = next_part();
            if (!part) return in_this_record(part.problem());
            if (!*part)
                return in_this_record(
                    problem("the file ends before the record's last "
                            "segment",
                            "the file is damaged"));
            if (!is_continuation((*part)->segment)) {
                return in_this_record(out_of_order((*part)->segment));
            }
            if ((*part)->length > record_.size() - length) {
                return in_this_record(too_long(length + (*part)->length));
            }
            keep(**part, length);
            if ((*part)->segment == Segment::last) return std::nullopt;
        }
    }

    // Problems name the record that comes next; this one has been counted.
    Problem in_this_record(Problem problem) const {
        problem.place.record = count_;
        return problem;
    }

    Result<std::optional<Part>> next_part() {
        if (has_blocks_ && block_left_ == 0) {
            const Result<bool> block = begin_block();
            if (!block) return block.problem();
            if (!*block) return std::optional<Part>();
            start_ = offset();
        }
        const Result<std::size_t> available = ensure(header_.size);
        if (!available) return available.problem();
        if (*available == 0 && !has_blocks_) return std::optional<Part>();
        if (*available < header_.size || (has_blocks_ && block_left_ < header_.size)) {
            return cut_header(*available);
        }
        return part_after_header();
    }

    Result<std::optional<Part>> part_after_header() {
        const std::uint8_t* const header = buffer_.get() + position_;
        const std::uint32_t length = header_.length_in(header);
        const std::optional<Segment> segment = header_.segment_in(header);
        if (!segment) return not_a_header(header);
        const std::optional<std::size_t> payload = header_.payload(length);
        if (!payload) return impossible_length(length);
        if (has_blocks_ && *payload > block_left_ - header_.size) return beyond_block(*payload);
        if (*payload > record_.size()) return too_long(*payload);
        const std::size_t wanted = header_.size + *payload;
        const Result<std::size_t> available = ensure(wanted);
        if (!available) return available.problem();
        if (*available < wanted) return cut_short(*available - header_.size, *payload);
        position_ += wanted;
        if (has_blocks_) block_left_ -= header_.size + *payload;
        return std::optional(
            Part{buffer_.get() + position_ - *payload, *payload, *segment, start_ + header_.size});
    }

    // False at the end of the file.
    Result<bool> begin_block() {
        const Result<std::size_t> available = ensure(BLOCK_HEADER);
        if (!available) return available.problem();
        if (*available == 0) return false;
        if (*available < BLOCK_HEADER) return cut_header(*available);
        const std::uint8_t* const header = buffer_.get() + position_;
        const std::optional<std::size_t> payload = block_payload(header);
        if (!payload) {
            return problem(
                "X'" + records::hexadecimal({header, BLOCK_HEADER}) + "' is not a block's header",
                "the file is damaged, or in another format");
        }
        block_left_ = *payload;
        position_ += BLOCK_HEADER;
        return true;
    }

    // Has so many bytes in the buffer, if the file has them. Result: how many there are, at most
    // `wanted`.
    Result<std::size_t> ensure(std::size_t wanted) {
        if (filled_ - position_ < wanted && !has_ended_) {
            std::memmove(buffer_.get(), buffer_.get() + position_, filled_ - position_);
            buffer_offset_ += position_;
            filled_ -= position_;
            position_ = 0;
            const Result<std::size_t> count =
                source_.read(buffer_.get() + filled_, size_ - filled_);
            if (!count) return count.problem();
            has_ended_ = *count < size_ - filled_;
            filled_ += *count;
        }
        return std::min(wanted, filled_ - position_);
    }

    Problem problem(const std::string& what, const std::string& remedy) const {
        Place place;
        place.file = source_.name();
        place.record = count_ + 1;
        place.byte_offset = start_;
        return {Cause::record, place, what, remedy};
    }
    Problem cut_header(std::size_t available) const {
        const std::size_t there =
            has_blocks_ && block_left_ > 0 ? std::min(available, block_left_) : available;
        return problem(
            "the header is cut short: " + bytes_text(there) + " of " + std::to_string(header_.size),
            "the file is damaged, or in another format");
    }
    Problem cut_short(std::size_t available, std::size_t payload) const {
        return problem(
            "the record is cut short: " + bytes_text(available) + " of " + std::to_string(payload),
            "the file is damaged, or in another format");
    }
    Problem not_a_header(const std::uint8_t* header) const {
        return problem(
            "X'" + records::hexadecimal({header, header_.size}) + "' is not a record's header",
            "the file is damaged, or in another format");
    }
    Problem impossible_length(std::uint32_t length) const {
        return problem(
            "a record cannot have the length " + std::to_string(length) + " in its header",
            "the file is damaged, or in another format");
    }
    Problem beyond_block(std::size_t payload) const {
        return problem("a record of " + bytes_text(payload) + " does not fit in the " +
                           bytes_text(block_left_) + " that its block has left",
                       "the file is damaged, or in another format");
    }
    Problem too_long(std::size_t length) const {
        return problem("the record is too long: " + bytes_text(length) + ", the layout has " +
                           std::to_string(record_.size()),
                       "the layout does not fit the file, or the file is in another format");
    }
    Problem out_of_order(Segment segment) const {
        return problem(is_continuation(segment)
                           ? "a record begins with a segment that is not its first"
                           : "a record begins before the last segment of the one before",
                       "the file is damaged, or in another format");
    }

    ByteSource& source_;
    LengthHeader header_;
    bool has_blocks_;
    std::uint8_t fill_;
    std::size_t size_;
    std::unique_ptr<std::uint8_t[]> buffer_;  // not cleared: a small file touches little of it
    std::uint64_t buffer_offset_;             // of the buffer's first byte in the file
    std::size_t position_ = 0;
    std::size_t filled_ = 0;
    bool has_ended_ = false;
    std::size_t block_left_ = 0;  // bytes of the current block
    std::uint64_t start_ = 0;     // where the header stands that is read
    std::uint64_t count_ = 0;
    std::vector<std::uint8_t> record_;  // a shorter or segmented one, filled up
    std::size_t used_ = 0;              // bytes at its start that are not fill
};

class HeadedRecordWriter : public RecordWriter {
  public:
    HeadedRecordWriter(const RecordFormat& format, ByteSink& sink) : format_(format), sink_(sink) {}

    Done add(std::span<const std::uint8_t> record) override {
        const LengthHeader& header = format_.header;
        if (record.empty() && !header.counts_itself) {
            return refused(
                "the record has no bytes, which the format " + format_.name + " cannot tell",
                "give records a least length");
        }
        if (format_.kind == RecordFormat::Kind::blocks) return add_to_block(record);
        if (record.size() <= header.longest_payload()) return write(record, Segment::whole);
        if (header.has_segments) return write_segments(record);
        return too_long(record, header.longest_payload());
    }

    Done close() override {
        if (Done problem = write_block()) return problem;
        return sink_.close();
    }

  private:
    static Problem refused(const std::string& what, const std::string& remedy) {
        return {Cause::record, {}, what, remedy};
    }
    Problem too_long(std::span<const std::uint8_t> record, std::size_t most) const {
        return refused("the record has " + bytes_text(record.size()) + ", the format " +
                           format_.name + " holds up to " + std::to_string(most),
                       "write it in another format");
    }

    Done write(std::span<const std::uint8_t> part, Segment segment) {
        const auto header = format_.header.make(part.size(), segment);
        if (Done problem = sink_.write(header.data(), format_.header.size)) return problem;
        return sink_.write(part.data(), part.size());
    }

    Done write_segments(std::span<const std::uint8_t> record) {
        Segment segment = Segment::first;
        while (record.size() > LARGEST_SEGMENT) {
            if (Done problem = write(record.first(LARGEST_SEGMENT), segment)) return problem;
            record = record.subspan(LARGEST_SEGMENT);
            segment = Segment::middle;
        }
        return write(record, Segment::last);
    }

    Done add_to_block(std::span<const std::uint8_t> record) {
        const std::size_t most = format_.block_size - BLOCK_HEADER;
        const std::size_t size = format_.header.size + record.size();
        if (size > most) return too_long(record, most - format_.header.size);
        if (block_.size() + size > most) {
            if (Done problem = write_block()) return problem;
        }
        const auto header = format_.header.make(record.size());
        block_.insert(block_.end(), header.begin(), header.begin() + format_.header.size);
        block_.insert(block_.end(), record.begin(), record.end());
        return std::nullopt;
    }

    Done write_block() {
        if (block_.empty()) return std::nullopt;
        if (Done problem = write(block_, Segment::whole)) return problem;
        block_.clear();
        return std::nullopt;
    }

    RecordFormat format_;
    ByteSink& sink_;
    std::vector<std::uint8_t> block_;  // what the current block holds after its header
};

}  // namespace

std::unique_ptr<RecordReader> read_headed_records(const RecordFormat& format, ByteSource& source,
                                                  RecordArea area) {
    return std::make_unique<HeadedRecordReader>(format, source, area);
}

std::unique_ptr<RecordWriter> write_headed_records(const RecordFormat& format, ByteSink& sink) {
    return std::make_unique<HeadedRecordWriter>(format, sink);
}

}  // namespace conversion
