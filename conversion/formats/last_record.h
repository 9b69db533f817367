// Tells of each record whether it is the last, which takes reading one ahead.
#pragma once

#include "conversion/formats/record_format.h"

namespace conversion {

// `length`: of the longest record, bytes.
std::unique_ptr<RecordReader> telling_last(std::unique_ptr<RecordReader> reader,
                                           std::size_t length);

}  // namespace conversion
