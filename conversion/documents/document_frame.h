// What stands around the children of a document element: where a document can be cut into whole
// ones, and what several must have in common to be put together.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "conversion/documents/expat_position.h"
#include "conversion/formats/byte_sink.h"
#include "conversion/problem.h"

namespace conversion {

struct DocumentFrame {
    std::uint64_t children = 0;      // of the document element; several in one entity count as one
    ByteRange type;                  // the DOCTYPE declaration; empty without one
    ByteRange tag;                   // the start tag of the document element
    bool is_empty_tag = false;       // it is the end tag as well: <orders/>
    std::uint64_t children_end = 0;  // after the last child; the end of the tag without one
    std::uint64_t end_tag = 0;       // where the end tag begins
    std::uint64_t size = 0;          // of the file
    std::string encoding = {};       // as declared; empty when it is not
};

// Called for each child of the document element with the place after its last byte; `frame` has
// all that comes before, and the size.
using AfterChild = std::function<void(const DocumentFrame& frame, std::uint64_t end)>;

// Parses the document in a regular file from beginning to end. A problem as check_document gives
// it. Throws std::bad_alloc.
Result<DocumentFrame> frame_of(const std::string& file, const std::string& shown_name,
                               const AfterChild& after_child = nullptr);

// The bytes of a range. A problem when the file has become shorter, or cannot be read.
Result<std::string> bytes_of(const std::string& file, ByteRange range);
// Copies a range to a sink, in pieces.
Done copy_bytes(const std::string& file, ByteRange range, ByteSink& sink);

}  // namespace conversion
