// Files of records, read one record at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace command {

struct Record {
    const std::uint8_t* data;   // record_length bytes, valid until the next record is read
    std::uint64_t number;       // from 1
    std::uint64_t file_offset;  // of its first byte, from 0
};

// A source of bytes: a file, or standard input ("-").
class ByteSource {
  public:
    // Throws Failure.
    explicit ByteSource(const std::string& name);
    ~ByteSource();
    ByteSource(const ByteSource&) = delete;
    ByteSource& operator=(const ByteSource&) = delete;

    // Reads up to `size` bytes; fewer only at the end. Throws Failure.
    std::size_t read(std::uint8_t* buffer, std::size_t size);
    // Bytes in a regular file; nothing for a pipe or a device.
    std::optional<std::uint64_t> size() const;
    // As it is shown in messages.
    const std::string& name() const { return name_; }
    // True when this is the file that `other` names.
    bool is_same_file(const std::string& other) const;

  private:
    std::string name_;
    int descriptor_;
};

class RecordReader {
  public:
    virtual ~RecordReader() = default;
    // The next record, or nothing at the end of the file. Throws Failure for a file that does not
    // consist of such records.
    virtual std::optional<Record> next() = 0;
};

// Records of the same length, one directly behind the other.
std::unique_ptr<RecordReader> read_fixed_records(ByteSource& source, std::size_t record_length);

// A line for each record, ended by LF or CR LF and filled up with spaces.
std::unique_ptr<RecordReader> read_line_records(ByteSource& source, std::size_t record_length);

}  // namespace command
