// Files as buffered streams, file names, and today's date.
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/export.h"

struct HostStream;

// Opens a file. `mode`: "r" reads; "w" and "wb" create or empty the file for writing (both write
// bytes as they are). `flag` is 1 for the output opens of the file interface, 0 otherwise.
// The name "-" is the process's standard output when writing and its standard input when reading.
// Result: a stream owned by the caller and closed with host_fclose; null on failure, with the
// system's last error number saying why.
HOST_API HostStream* host_fopen(const char* name, const char* mode, int flag);

// Writes what is buffered, cuts an output file at its last write position, closes it and releases
// the stream. A write that failed, now or earlier, is remembered by the host for the embedding
// program. Null is allowed. The streams of the process itself are not closed.
HOST_API void host_fclose(HostStream* stream);

// Reads up to size * count bytes. Result: whole items read; 0 at the end or on a read error.
HOST_API std::size_t host_fread(void* buffer, std::size_t size, std::size_t count,
                                HostStream* stream);

// Writes size * count bytes. Result: whole items taken over. After a write error every write gives
// 0.
HOST_API std::size_t host_fwrite(const void* data, std::size_t size, std::size_t count,
                                 HostStream* stream);

// The low 32 bits of the write position in bytes.
HOST_API std::uint32_t host_ftell(HostStream* stream);

// Sets the write position back to one from host_ftell; later output overwrites from there. The
// position meant is the nearest one at or before the present position with these low 32 bits, so
// files of any size can be written as long as a step back is shorter than 4 GiB.
HOST_API void host_fseek(HostStream* stream, std::uint32_t position);

// The process's standard input and standard error as streams of the same kind; never null, never
// owned by the caller. Standard error is written through at once.
HOST_API HostStream* host_standard_input();
HOST_API HostStream* host_standard_error();

// Deletes a file. Result: 0, or -1 with the system's last error number.
HOST_API int host_remove_file(const char* name);

// Fetches an "http:" URL whole into a private temporary file.
// Result: the file's name in a tracked block, released with host_free after the file was deleted;
// null when the document cannot be had complete (refused, not found, cut short, larger or slower
// than the host allows, no memory), and then no file is left behind.
HOST_API char* host_fetch_url(const char* url);

// The name under which a data file's record description is looked up.
// Result: a text of the host's, valid until the next call on the same thread.
HOST_API const char* host_xfd_name(const char* data_file_name);

// Today as the decimal number yyyymmdd.
HOST_API std::int32_t host_date();
