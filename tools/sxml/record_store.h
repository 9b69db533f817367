// Writing a record file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "tools/sxml/atomic_output.h"

namespace command {

enum class RecordFormat { fixed, lines };

// Records of fixed length one directly behind the other, or a line each without the spaces at its
// end. Functions throw Failure when something cannot be stored.
class RecordStore {
  public:
    RecordStore(const AtomicOutput& output, RecordFormat format, std::size_t record_length);
    ~RecordStore();
    RecordStore(const RecordStore&) = delete;
    RecordStore& operator=(const RecordStore&) = delete;

    // A record with a line end in it cannot be a line.
    void add(const std::uint8_t* record);
    void close();

  private:
    [[noreturn]] void fail_to_write() const;

    const AtomicOutput& output_;
    RecordFormat format_;
    std::size_t record_length_;
    std::vector<char> buffer_;  // of a file that is closed here
    std::FILE* file_;
};

}  // namespace command
