#include "conversion/formats/last_record.h"

#include <utility>

namespace conversion {

namespace {

class LastRecordReader : public RecordReader {
  public:
    LastRecordReader(std::unique_ptr<RecordReader> reader, std::size_t length)
        : reader_(std::move(reader)), length_(length) {}

    Result<std::optional<Record>> next() override {
        if (!has_begun_) read_ahead();
        has_begun_ = true;
        if (!ahead_ || !*ahead_) return ahead_;
        Record record = **ahead_;
        bytes_.swap(bytes_ahead_);
        record.data = bytes_.data();
        read_ahead();
        record.is_last = ahead_ && !*ahead_;
        return std::optional(record);
    }

  private:
    void read_ahead() {
        ahead_ = reader_->next();
        if (ahead_ && *ahead_) bytes_ahead_.assign((*ahead_)->data, (*ahead_)->data + length_);
    }

    std::unique_ptr<RecordReader> reader_;
    std::size_t length_;
    bool has_begun_ = false;
    Result<std::optional<Record>> ahead_ = std::optional<Record>();
    std::vector<std::uint8_t> bytes_;
    std::vector<std::uint8_t> bytes_ahead_;
};

}  // namespace

std::unique_ptr<RecordReader> telling_last(std::unique_ptr<RecordReader> reader,
                                           std::size_t length) {
    return std::make_unique<LastRecordReader>(std::move(reader), length);
}

}  // namespace conversion
