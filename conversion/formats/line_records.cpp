#include "conversion/formats/line_records.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace conversion {

namespace {

constexpr std::size_t BUFFER_SIZE = std::size_t{1} << 20;

class LineRecordReader : public RecordReader {
  public:
    LineRecordReader(ByteSource& source, std::size_t record_length)
        : source_(source),
          buffer_(BUFFER_SIZE),
          record_(record_length),
          buffer_offset_(source.offset()) {}

    Result<std::optional<Record>> next() override {
        const std::uint64_t start = buffer_offset_ + position_;
        length_ = 0;
        if (const Done problem = read_line()) return *problem;
        if (length_ == 0 && !line_ended_) return std::optional<Record>();
        ++count_;
        if (length_ > record_.size() && has_surplus_) return too_long();
        const auto kept =
            static_cast<std::size_t>(std::min<std::uint64_t>(length_, record_.size()));
        std::fill(record_.begin() + static_cast<std::ptrdiff_t>(kept), record_.end(),
                  std::uint8_t{' '});
        return std::optional(Record{record_.data(), record_.size(), count_, start});
    }

  private:
    // Reads a line of any length and keeps the part that fits the record.
    Done read_line() {
        bool carriage_return = false;  // the last byte of the line so far, not yet counted
        line_ended_ = false;
        has_surplus_ = false;
        while (!line_ended_) {
            if (position_ == filled_) {
                if (Done problem = fill()) return problem;
                if (filled_ == 0) break;
            }
            const std::uint8_t* start = buffer_.data() + position_;
            const auto* end =
                static_cast<const std::uint8_t*>(std::memchr(start, '\n', filled_ - position_));
            line_ended_ = end != nullptr;
            auto count =
                static_cast<std::size_t>((line_ended_ ? end : buffer_.data() + filled_) - start);
            position_ += count + (line_ended_ ? 1 : 0);
            if (count == 0) continue;
            if (carriage_return) keep("\r", 1);
            carriage_return = start[count - 1] == '\r';
            if (carriage_return) --count;
            keep(start, count);
        }
        // At the end of the file a carriage return ends no line: it is data.
        if (carriage_return && !line_ended_) keep("\r", 1);
        return {};
    }

    void keep(const void* data, std::size_t count) {
        const auto* bytes = static_cast<const std::uint8_t*>(data);
        std::size_t fitting = 0;
        if (length_ < record_.size()) {
            const auto offset = static_cast<std::size_t>(length_);
            fitting = std::min(count, record_.size() - offset);
            std::memcpy(record_.data() + offset, bytes, fitting);
        }
        has_surplus_ = has_surplus_ || std::any_of(bytes + fitting, bytes + count,
                                                   [](std::uint8_t byte) { return byte != ' '; });
        length_ += count;
    }

    Done fill() {
        buffer_offset_ += filled_;
        position_ = 0;
        const Result<std::size_t> count = source_.read(buffer_.data(), buffer_.size());
        if (!count) return count.problem();
        filled_ = *count;
        return {};
    }

    Problem too_long() const {
        Place place;
        place.file = source_.name();
        place.line = count_;
        place.column = record_.size() + 1;
        return {Cause::record, place,
                "the line is too long: " + std::to_string(length_) + " bytes, the record has " +
                    std::to_string(record_.size()),
                "the layout does not fit the file"};
    }

    ByteSource& source_;
    std::vector<std::uint8_t> buffer_;
    std::vector<std::uint8_t> record_;
    std::uint64_t buffer_offset_;  // of the buffer's first byte in the file
    std::size_t position_ = 0;
    std::size_t filled_ = 0;
    std::uint64_t count_ = 0;
    std::uint64_t length_ = 0;  // of the line, without its end
    bool line_ended_ = false;
    bool has_surplus_ = false;  // the line has more than spaces where the record has ended
};

class LineRecordWriter : public RecordWriter {
  public:
    explicit LineRecordWriter(ByteSink& sink) : sink_(sink) {}

    Done add(std::span<const std::uint8_t> record) override {
        if (std::find(record.begin(), record.end(), '\n') != record.end()) {
            return refused("the record holds a line feed, which would end its line");
        }
        std::size_t length = record.size();
        while (length > 0 && record[length - 1] == ' ') --length;
        if (length > 0 && record[length - 1] == '\r') {
            return refused("the record ends with a carriage return, which would be lost");
        }
        if (Done problem = sink_.write(record.data(), length)) return problem;
        return sink_.write("\n", 1);
    }
    Done close() override { return sink_.close(); }

  private:
    static Problem refused(const std::string& what) {
        return {Cause::record, {}, what, "write records of fixed length"};
    }

    ByteSink& sink_;
};

}  // namespace

std::unique_ptr<RecordReader> read_line_records(ByteSource& source, RecordArea area) {
    return std::make_unique<LineRecordReader>(source, area.length);
}

std::unique_ptr<RecordWriter> write_line_records(ByteSink& sink) {
    return std::make_unique<LineRecordWriter>(sink);
}

}  // namespace conversion
