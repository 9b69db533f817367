// Records with their length before them, by themselves or in blocks; those in segments are put
// together.
#pragma once

#include "conversion/formats/record_format.h"

namespace conversion {

std::unique_ptr<RecordReader> read_headed_records(const RecordFormat& format, ByteSource& source,
                                                  RecordArea area);
std::unique_ptr<RecordWriter> write_headed_records(const RecordFormat& format, ByteSink& sink);

}  // namespace conversion
