// Records of fixed length: handed out in place, from a buffer that holds whole records.

#include <vector>

#include "tools/sxml/errors.h"
#include "tools/sxml/record_file.h"

namespace command {

namespace {

constexpr std::size_t BUFFER_SIZE = std::size_t{1} << 20;

class FixedRecordReader : public RecordReader {
  public:
    FixedRecordReader(ByteSource& source, std::size_t record_length)
        : source_(source),
          record_length_(record_length),
          buffer_(record_length * std::max<std::size_t>(1, BUFFER_SIZE / record_length)) {}

    std::optional<Record> next() override {
        if (position_ == filled_) fill();
        if (position_ == filled_) return std::nullopt;
        if (filled_ - position_ < record_length_) fail_cut_short();
        const Record record{buffer_.data() + position_, count_ + 1, count_ * record_length_};
        position_ += record_length_;
        ++count_;
        return record;
    }

  private:
    void fill() {
        position_ = 0;
        filled_ = source_.read(buffer_.data(), buffer_.size());
        if (count_ == 0 && filled_ > record_length_) {
            looks_like_lines_ = buffer_[record_length_] == '\n' || buffer_[record_length_] == '\r';
        }
    }

    [[noreturn]] void fail_cut_short() const {
        fail(source_.name() + ": record " + std::to_string(count_ + 1) + " is cut short: " +
             std::to_string(filled_ - position_) + " bytes of " + std::to_string(record_length_) +
             " at byte offset " + std::to_string(count_ * record_length_) +
             (looks_like_lines_
                  ? "; the first record ends with a line end: --line reads such files"
                  : "; the file is damaged, or its records are not of the layout's length"));
    }

    ByteSource& source_;
    std::size_t record_length_;
    std::vector<std::uint8_t> buffer_;
    std::size_t position_ = 0;
    std::size_t filled_ = 0;
    std::uint64_t count_ = 0;
    bool looks_like_lines_ = false;
};

}  // namespace

std::unique_ptr<RecordReader> read_fixed_records(ByteSource& source, std::size_t record_length) {
    return std::make_unique<FixedRecordReader>(source, record_length);
}

}  // namespace command
