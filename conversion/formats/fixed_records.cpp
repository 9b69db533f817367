#include "conversion/formats/fixed_records.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "conversion/formats/format_detection.h"
#include "conversion/texts/counted.h"

namespace conversion {

namespace {

constexpr std::size_t BUFFER_SIZE = std::size_t{1} << 17;

std::size_t whole_records(std::size_t size, std::size_t record_length) {
    return record_length * std::max<std::size_t>(1, size / record_length);
}

class FixedRecordReader : public RecordReader {
  public:
    FixedRecordReader(ByteSource& source, std::size_t record_length, bool is_asked_for)
        : source_(source),
          is_asked_for_(is_asked_for),
          record_length_(record_length),
          size_(whole_records(BUFFER_SIZE, record_length)),
          buffer_(std::make_unique_for_overwrite<std::uint8_t[]>(size_)),
          start_(source.offset()) {}

    Result<std::optional<Record>> next() override {
        if (position_ == filled_) {
            if (const Done problem = fill()) return *problem;
        }
        if (position_ == filled_) return std::optional<Record>();
        if (filled_ - position_ < record_length_) return cut_short();
        const Record record{buffer_.get() + position_, record_length_, count_ + 1,
                            start_ + count_ * record_length_};
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
        return is_asked_for_ ? Done() : look_for_lengths();
    }

    FileStart file_start() const {
        return {{buffer_.get(), filled_}, filled_ < size_, record_length_};
    }

    Done look_for_lengths() {
        if (!may_have_lengths(file_start())) return {};
        if (const Done problem = read_on()) return problem;
        const std::optional<RecordFormat> other = format_with_lengths(file_start());
        if (!other) return {};
        return problem("the file has headers with lengths in it",
                       std::string(ANOTHER_FORMAT) + other->name);
    }

    // Reads the rest of what is looked at.
    Done read_on() {
        const std::size_t size = whole_records(LOOKED_AT, record_length_);
        if (filled_ < size_ || size == size_) return {};
        auto larger = std::make_unique_for_overwrite<std::uint8_t[]>(size);
        std::copy_n(buffer_.get(), filled_, larger.get());
        buffer_ = std::move(larger);
        size_ = size;
        const Result<std::size_t> count = source_.read(buffer_.get() + filled_, size_ - filled_);
        if (!count) return count.problem();
        filled_ += *count;
        return {};
    }

    Problem problem(const std::string& what, const std::string& remedy) const {
        Place place;
        place.file = source_.name();
        place.record = count_ + 1;
        place.byte_offset = start_ + count_ * record_length_;
        return {Cause::record, place, what, remedy};
    }

    Problem cut_short() const {
        return problem("the record is cut short: " + counted(filled_ - position_, "byte") + " of " +
                           std::to_string(record_length_) +
                           (looks_like_lines_ ? "; the first record ends with a line end" : ""),
                       looks_like_lines_
                           ? std::string(ANOTHER_FORMAT) + "line"
                           : "the file is damaged, or its records are not of the layout's length");
    }

    ByteSource& source_;
    bool is_asked_for_;
    std::size_t record_length_;
    std::size_t size_;
    std::unique_ptr<std::uint8_t[]> buffer_;  // not cleared: a small file touches little of it
    std::uint64_t start_;                     // of the first record in the file
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

std::unique_ptr<RecordReader> read_fixed_records(const RecordFormat& format, ByteSource& source,
                                                 RecordArea area) {
    return std::make_unique<FixedRecordReader>(source, area.length, format.is_asked_for);
}

std::unique_ptr<RecordWriter> write_fixed_records(ByteSink& sink) {
    return std::make_unique<FixedRecordWriter>(sink);
}

}  // namespace conversion
