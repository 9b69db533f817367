// The forms that a file of records may have. Each has a source of its own with its reader and its
// writer; a new one is a value here, a case in record_format.cpp and such a source.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "conversion/formats/byte_sink.h"
#include "conversion/formats/byte_source.h"
#include "conversion/problem.h"

namespace conversion {

enum class RecordFormat : std::uint8_t {
    fixed,  // records of one length without anything between them
    lines   // a line for each record, without the spaces at its end
};

struct Record {
    const std::uint8_t* data;   // valid until the next record is read
    std::size_t length;         // bytes
    std::uint64_t number;       // from 1
    std::uint64_t file_offset;  // of its first byte, from 0
};

class RecordReader {
  public:
    virtual ~RecordReader() = default;
    // The next record, or nothing at the end of the file. A problem when the file does not consist
    // of such records.
    virtual Result<std::optional<Record>> next() = 0;
};

class RecordWriter {
  public:
    virtual ~RecordWriter() = default;
    // Stores a record. A problem of Cause::record when the format cannot hold it.
    virtual Done add(std::span<const std::uint8_t> record) = 0;
    // Writes out what is left and closes the sink.
    virtual Done close() = 0;
};

// `record_length` is the length of the longest record. The source and the sink must outlive what is
// made here.
std::unique_ptr<RecordReader> read_records(RecordFormat format, ByteSource& source,
                                           std::size_t record_length);
std::unique_ptr<RecordWriter> write_records(RecordFormat format, ByteSink& sink);

}  // namespace conversion
