// The forms that a file of records may have. Each has a source of its own with its reader and its
// writer; a new one is a row in record_format.cpp and such a source.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "conversion/formats/byte_sink.h"
#include "conversion/formats/byte_source.h"
#include "conversion/formats/length_header.h"
#include "conversion/problem.h"
#include "records/position.h"

namespace conversion {

struct RecordFormat {
    enum class Kind : std::uint8_t {
        fixed,   // records of one length without anything between them
        lines,   // a line for each record, without the spaces at its end
        headed,  // a header with its length before each record
        blocks   // blocks of such records, with a header before each block
    };
    std::string name = "fixed";
    Kind kind = Kind::fixed;
    LengthHeader header = {};      // headed, blocks
    std::uint32_t block_size = 0;  // blocks: most bytes of one that is written, its header included
    bool is_asked_for = false;     // fixed, even if the file looks as if it had headers

    // The format called so: fixed, line, rdw, rdw:little, rdw:payload, rdw:little:payload, bdw,
    // bdw:SIZE, gnucobol, gnucobol:0 to gnucobol:3. A problem that lists the names.
    static Result<RecordFormat> find(std::string_view name);
    // Those with a header before each record, in the order in which a file is compared with them.
    static const std::vector<RecordFormat>& with_lengths();

    // Whether the file says how long each record is.
    bool has_lengths() const { return kind == Kind::headed || kind == Kind::blocks; }
};

struct Record {
    const std::uint8_t* data;   // valid until the next record is read
    std::size_t length;         // bytes
    std::uint64_t number;       // from 1
    std::uint64_t file_offset;  // of its first byte, from 0
    bool is_last = false;       // in the file; told only when the reader was asked to

    records::RecordPosition position() const { return {number == 1, is_last}; }
};

class RecordReader {
  public:
    virtual ~RecordReader() = default;
    // The next record, or nothing at the end of the file. At `data` are as many bytes as the
    // longest record has; those after a shorter record are filled. A problem when the file does not
    // consist of such records.
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

// What the records of a file are read into.
struct RecordArea {
    std::size_t length;       // of the longest record, bytes
    std::uint8_t fill = ' ';  // the byte that follows a shorter one
    bool tells_last = false;  // each record is read before the one before it is given out
};

// The remedies of problems with the format begin like this when another format, whose name follows,
// fits the file.
constexpr std::string_view ANOTHER_FORMAT = "read it in the format ";

// The source and the sink must outlive what is made here.
std::unique_ptr<RecordReader> read_records(const RecordFormat& format, ByteSource& source,
                                           RecordArea area);
std::unique_ptr<RecordWriter> write_records(const RecordFormat& format, ByteSink& sink);

}  // namespace conversion
