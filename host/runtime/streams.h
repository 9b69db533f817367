// Functions of the file service for the embedding program.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "host/export.h"
#include "host/runtime/runtime_api.h"

namespace host {

struct StreamFailure {
    std::string file;
    int error;  // the system's error number
};

// The oldest write failure (found while writing, cutting or closing) not yet taken, on any stream;
// taking it forgets it. The file's name is empty when there was no memory to remember it.
RUNTIME_API std::optional<StreamFailure> take_write_failure();
// The oldest failure of reading not yet taken. For the module a stream that cannot be read ends
// there, so what was read may look complete.
RUNTIME_API std::optional<StreamFailure> take_read_failure();
// The system's error number with which host_fopen failed since this was last asked, 0 when it did
// not; another one comes before "no such file". The module may try another name, or do other
// things, before it tells that it could not open a file, and errno changes. Asking forgets it.
RUNTIME_API int take_open_failure();

}  // namespace host

// The same for C programs. Result: the system's error number, 0 when no failure is left; the file's
// name is stored through `file` unless that is null, and stays valid until the next call.
HOST_API int host_take_write_failure(const char** file);

namespace host {

// Makes host_fread hand out at most this many bytes a call (0 = as many as asked for), so that
// tests can cut input anywhere.
RUNTIME_API void limit_read_size(std::size_t bytes);

// While this lives, host_fopen writes to another file when it opens `name` for output: what is
// written there can carry a name in its text that its file does not have yet. One at a time.
class RUNTIME_API OutputName {
  public:
    OutputName(const std::string& name, const std::string& file);
    ~OutputName();
    OutputName(const OutputName&) = delete;
    OutputName& operator=(const OutputName&) = delete;

    const std::string& name() const { return name_; }

  private:
    std::string name_;
    std::string file_;
};

// What a stream reads instead of a whole file: a text, a range of the file, and another text.
struct InputPart {
    std::string before;
    std::uint64_t begin;  // of the range, in bytes from 0
    std::uint64_t end;    // the first byte after it
    std::string after;
};

// While this lives, host_fopen gives this part of `file` where that is opened for reading. One at a
// time.
class RUNTIME_API InputPartScope {
  public:
    InputPartScope(const std::string& file, const InputPart& part);
    ~InputPartScope();
    InputPartScope(const InputPartScope&) = delete;
    InputPartScope& operator=(const InputPartScope&) = delete;

    const std::string& file() const { return file_; }
    const InputPart& part() const { return part_; }

  private:
    const std::string& file_;
    const InputPart& part_;
};

// While this lives, host_fopen keeps what `file` holds when it opens that for output, and begins to
// write at this position. One at a time.
class RUNTIME_API OutputStartScope {
  public:
    OutputStartScope(const std::string& file, std::uint64_t position);
    ~OutputStartScope();
    OutputStartScope(const OutputStartScope&) = delete;
    OutputStartScope& operator=(const OutputStartScope&) = delete;

    const std::string& file() const { return file_; }
    std::uint64_t position() const { return position_; }

  private:
    const std::string& file_;
    std::uint64_t position_;
};

// Number of streams opened with host_fopen and not yet closed.
RUNTIME_API std::size_t open_streams();

}  // namespace host
