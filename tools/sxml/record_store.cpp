#include "tools/sxml/record_store.h"

#include <cerrno>
#include <cstring>

#include "tools/sxml/errors.h"

namespace command {

namespace {

constexpr std::size_t BUFFER_SIZE = std::size_t{1} << 17;

// Standard output is flushed when the process ends, when every store is gone.
char standard_output_buffer[BUFFER_SIZE];

}  // namespace

RecordStore::RecordStore(const AtomicOutput& output, RecordFormat format, std::size_t record_length)
    : output_(output),
      format_(format),
      record_length_(record_length),
      file_(output.target() == "-" ? stdout : output.open()) {
    if (file_ == nullptr) fail_to_write();
    if (file_ != stdout) buffer_.resize(BUFFER_SIZE);
    std::setvbuf(file_, file_ == stdout ? standard_output_buffer : buffer_.data(), _IOFBF,
                 BUFFER_SIZE);
}

RecordStore::~RecordStore() {
    if (file_ != nullptr && file_ != stdout) std::fclose(file_);
}

void RecordStore::add(const std::uint8_t* record) {
    std::size_t length = record_length_;
    if (format_ == RecordFormat::lines) {
        if (std::memchr(record, '\n', length) != nullptr) {
            fail("it holds a line feed, which would end its line; leave out --line");
        }
        while (length > 0 && record[length - 1] == ' ') --length;
        if (length > 0 && record[length - 1] == '\r') {
            fail("it ends with a carriage return, which would be lost; leave out --line");
        }
    }
    bool written = std::fwrite(record, 1, length, file_) == length;
    if (format_ == RecordFormat::lines) written = std::fputc('\n', file_) != EOF && written;
    if (!written) fail_to_write();
}

void RecordStore::close() {
    std::FILE* file = file_;
    file_ = nullptr;
    if ((file == stdout ? std::fflush(file) : std::fclose(file)) != 0) fail_to_write();
}

void RecordStore::fail_to_write() const {
    fail_file(output_.target() == "-" ? "standard output" : output_.target(), errno);
}

}  // namespace command
