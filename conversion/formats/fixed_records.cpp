#include "conversion/formats/fixed_records.h"

#include <algorithm>
#include <memory>

namespace conversion {

namespace {

constexpr std::size_t BUFFER_SIZE = std::size_t{1} << 20;

// Length of a record with its header of four bytes (length and zero, as tapes and mainframes have
// them), or 0 when these bytes are not one.
std::size_t length_by_header(const std::uint8_t* header) {
    return header[2] == 0 && header[3] == 0 ? header[0] * std::size_t{256} + header[1] : 0;
}

// True when the bytes are a chain of such records, of which none is longer than the layout allows.
// A chain whose links are as long as the layout's records does not count: the length stands in
// them.
bool have_length_headers(std::span<const std::uint8_t> bytes, std::size_t record_length) {
    constexpr std::size_t HEADER = 4;
    std::size_t position = 0;
    int records = 0;
    while (position + HEADER <= bytes.size()) {
        const std::size_t length = length_by_header(bytes.data() + position);
        if (length <= HEADER || length == record_length || length > record_length + HEADER) {
            return false;
        }
        position += length;
        ++records;
    }
    return records > 1;
}

class FixedRecordReader : public RecordReader {
  public:
    FixedRecordReader(ByteSource& source, std::size_t record_length)
        : source_(source),
          record_length_(record_length),
          size_(record_length * std::max<std::size_t>(1, BUFFER_SIZE / record_length)),
          buffer_(std::make_unique_for_overwrite<std::uint8_t[]>(size_)) {}

    Result<std::optional<Record>> next() override {
        if (position_ == filled_) {
            if (const Done problem = fill()) return *problem;
        }
        if (position_ == filled_) return std::optional<Record>();
        if (filled_ - position_ < record_length_) return cut_short();
        const Record record{buffer_.get() + position_, record_length_, count_ + 1,
                            count_ * record_length_};
        position_ += record_length_;
        ++count_;
        return std::optional(record);
    }

  private:
    Done fill() {
        position_ = 0;
        const Result<std::size_t> count = source_.read(buffer_.get(), size_);
        if (!count) return count.problem();
        filled_ = *count;
        if (count_ > 0) return {};
        looks_like_lines_ = filled_ > record_length_ &&
                            (buffer_[record_length_] == '\n' || buffer_[record_length_] == '\r');
        if (!have_length_headers({buffer_.get(), filled_}, record_length_)) return {};
        return problem("each record begins with its length (a header of 4 bytes)",
                       "transfer the file as records of fixed length, without these headers");
    }

    Problem problem(const std::string& what, const std::string& remedy) const {
        Place place;
        place.file = source_.name();
        place.record = count_ + 1;
        place.byte_offset = count_ * record_length_;
        return {Cause::record, place, what, remedy};
    }

    Problem cut_short() const {
        return problem("the record is cut short: " + std::to_string(filled_ - position_) +
                           " bytes of " + std::to_string(record_length_),
                       looks_like_lines_
                           ? "the first record ends with a line end: read the file as lines"
                           : "the file is damaged, or its records are not of the layout's length");
    }

    ByteSource& source_;
    std::size_t record_length_;
    std::size_t size_;
    std::unique_ptr<std::uint8_t[]> buffer_;  // not cleared: a small file touches little of it
    std::size_t position_ = 0;
    std::size_t filled_ = 0;
    std::uint64_t count_ = 0;
    bool looks_like_lines_ = false;
};

class FixedRecordWriter : public RecordWriter {
  public:
    explicit FixedRecordWriter(ByteSink& sink) : sink_(sink) {}
    Done add(std::span<const std::uint8_t> record) override {
        return sink_.write(record.data(), record.size());
    }
    Done close() override { return sink_.close(); }

  private:
    ByteSink& sink_;
};

}  // namespace

std::unique_ptr<RecordReader> read_fixed_records(ByteSource& source, std::size_t record_length) {
    return std::make_unique<FixedRecordReader>(source, record_length);
}

std::unique_ptr<RecordWriter> write_fixed_records(ByteSink& sink) {
    return std::make_unique<FixedRecordWriter>(sink);
}

}  // namespace conversion
