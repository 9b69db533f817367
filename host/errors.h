// The host's error values: per-caller words that entries of the module store into.
#pragma once

#include <cstdint>

#include "host/export.h"

// Values of the file error code.
enum HostFileError : std::int16_t {
    HOST_FILE_OK = 0,
    HOST_FILE_END = 8,           // end of the input: no further record, or the document ended
    HOST_FILE_NO_MEMORY = 14,    // no memory for a file, a parser or an element
    HOST_FILE_CANNOT_OPEN = 15,  // an input file could not be opened
    HOST_FILE_UNSUPPORTED = 17,  // operation or open mode not supported
    HOST_FILE_XML = 19           // the document is not well-formed
};

// The detail stored with HOST_FILE_XML when Expat reported the error.
constexpr std::int32_t HOST_DETAIL_EXPAT = 5;

// Each gives the address of a word of the calling thread; never null, valid while the thread runs.
HOST_API std::int16_t* host_file_error();
// The detail that goes with file error code `code`; codes out of range share one word.
HOST_API std::int32_t* host_error_detail(int code);
// With an XML error: Expat's error code.
HOST_API std::int32_t* host_error_subcode();
// With an XML error: a text of the module's, valid until its next error or trace line.
HOST_API const char** host_error_text();
