// The format of a file, detected from its first bytes.
#pragma once

#include "conversion/formats/record_format.h"

namespace conversion {

// So many bytes of a file are looked at where its records could be in another format.
constexpr std::size_t LOOKED_AT = std::size_t{1} << 20;

struct FileStart {
    std::span<const std::uint8_t> bytes;
    bool is_whole;              // there are no more
    std::size_t record_length;  // of the longest record of the layout
};

// The format with lengths that the bytes are in from end to end, as far as they go: every header
// is one, no record is longer than the layout allows, and the last one ends the file. Records that
// could be of fixed length as well do not count.
std::optional<RecordFormat> format_with_lengths(const FileStart& start);

// Whether a look at more of the file may find such a format: in one, headers follow each other as
// far as the bytes go.
bool may_have_lengths(const FileStart& start);

// Looks at the start of a source, which gives it once more. A problem when no format fits.
Result<RecordFormat> detect_format(ByteSource& source, std::size_t record_length);

}  // namespace conversion
