// Records of one length: read in place, from a buffer that holds whole records.
#pragma once

#include "conversion/formats/record_format.h"

namespace conversion {

std::unique_ptr<RecordReader> read_fixed_records(const RecordFormat& format, ByteSource& source,
                                                 RecordArea area);
std::unique_ptr<RecordWriter> write_fixed_records(ByteSink& sink);

}  // namespace conversion
