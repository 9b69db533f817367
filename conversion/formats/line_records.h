// Line sequential records: a line each, ended by LF or CR LF, filled up with spaces when it is
// read.
#pragma once

#include "conversion/formats/record_format.h"

namespace conversion {

std::unique_ptr<RecordReader> read_line_records(ByteSource& source, RecordArea area);
std::unique_ptr<RecordWriter> write_line_records(ByteSink& sink);

}  // namespace conversion
