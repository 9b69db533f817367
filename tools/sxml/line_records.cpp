// Line sequential records: a line each, filled up with spaces.

#include <algorithm>
#include <cstring>
#include <vector>

#include "tools/sxml/errors.h"
#include "tools/sxml/record_file.h"

namespace command {

namespace {

constexpr std::size_t BUFFER_SIZE = std::size_t{1} << 20;

class LineRecordReader : public RecordReader {
  public:
    LineRecordReader(ByteSource& source, std::size_t record_length)
        : source_(source), buffer_(BUFFER_SIZE), record_(record_length) {}

    std::optional<Record> next() override {
        const std::uint64_t start = buffer_offset_ + position_;
        const std::uint64_t length = read_line();
        if (length == 0 && !line_ended_) return std::nullopt;
        ++count_;
        if (length > record_.size()) fail_too_long(length);
        std::fill(record_.begin() + static_cast<std::ptrdiff_t>(length), record_.end(),
                  std::uint8_t{' '});
        return Record{record_.data(), count_, start};
    }

  private:
    // Reads a line of any length and keeps what of it fits the record. Result: its length without
    // the line end.
    std::uint64_t read_line() {
        std::uint64_t length = 0;
        bool carriage_return = false;  // the last byte of the line so far, not yet counted
        line_ended_ = false;
        while (!line_ended_ && (position_ < filled_ || fill())) {
            const std::uint8_t* start = buffer_.data() + position_;
            const auto* end =
                static_cast<const std::uint8_t*>(std::memchr(start, '\n', filled_ - position_));
            line_ended_ = end != nullptr;
            auto count =
                static_cast<std::size_t>((line_ended_ ? end : buffer_.data() + filled_) - start);
            position_ += count + (line_ended_ ? 1 : 0);
            if (count == 0) continue;
            if (carriage_return) length = keep("\r", 1, length);
            carriage_return = start[count - 1] == '\r';
            if (carriage_return) --count;
            length = keep(start, count, length);
        }
        // At the end of the file a carriage return ends no line: it is data.
        if (carriage_return && !line_ended_) length = keep("\r", 1, length);
        return length;
    }

    std::uint64_t keep(const void* data, std::size_t count, std::uint64_t length) {
        if (length < record_.size()) {
            const auto offset = static_cast<std::size_t>(length);
            std::memcpy(record_.data() + offset, data, std::min(count, record_.size() - offset));
        }
        return length + count;
    }

    bool fill() {
        buffer_offset_ += filled_;
        position_ = 0;
        filled_ = source_.read(buffer_.data(), buffer_.size());
        return filled_ > 0;
    }

    [[noreturn]] void fail_too_long(std::uint64_t length) const {
        fail(source_.name() + ": line " + std::to_string(count_) +
             " is too long: " + std::to_string(length) + " bytes, the record has " +
             std::to_string(record_.size()) + "; the layout does not fit the file");
    }

    ByteSource& source_;
    std::vector<std::uint8_t> buffer_;
    std::vector<std::uint8_t> record_;
    std::uint64_t buffer_offset_ = 0;  // of the buffer's first byte in the file
    std::size_t position_ = 0;
    std::size_t filled_ = 0;
    std::uint64_t count_ = 0;
    bool line_ended_ = false;
};

}  // namespace

std::unique_ptr<RecordReader> read_line_records(ByteSource& source, std::size_t record_length) {
    return std::make_unique<LineRecordReader>(source, record_length);
}

}  // namespace command
