#include "conversion/formats/record_format.h"

#include "conversion/formats/fixed_records.h"
#include "conversion/formats/line_records.h"

namespace conversion {

std::unique_ptr<RecordReader> read_records(RecordFormat format, ByteSource& source,
                                           std::size_t record_length) {
    switch (format) {
        case RecordFormat::lines:
            return read_line_records(source, record_length);
        case RecordFormat::fixed:
            break;
    }
    return read_fixed_records(source, record_length);
}

std::unique_ptr<RecordWriter> write_records(RecordFormat format, ByteSink& sink) {
    switch (format) {
        case RecordFormat::lines:
            return write_line_records(sink);
        case RecordFormat::fixed:
            break;
    }
    return write_fixed_records(sink);
}

}  // namespace conversion
