// Files of any content in every format: read, or refused with record and byte offset; what was read
// is the same when written and read again.
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "conversion/formats/format_detection.h"

namespace {

using Records = std::vector<std::vector<std::uint8_t>>;

constexpr std::size_t RECORD_LENGTH = 40;

void require(bool holds) {
    if (!holds) std::abort();
}

// A file in memory, with a name.
class MemoryFile {
  public:
    MemoryFile(const std::uint8_t* data, std::size_t size) : descriptor_(memfd_create("f", 0)) {
        require(descriptor_ >= 0);
        require(::write(descriptor_, data, size) == static_cast<ssize_t>(size));
    }
    ~MemoryFile() { ::close(descriptor_); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    std::string name() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

  private:
    int descriptor_;
};

// Reads what the file has, and tells whether it was whole.
bool read(const conversion::RecordFormat& format, const std::string& name, std::size_t size,
          Records& records) {
    auto source = conversion::ByteSource::open(name);
    require(static_cast<bool>(source));
    const auto reader = conversion::read_records(format, *source, {RECORD_LENGTH});
    for (;;) {
        const auto record = reader->next();
        if (!record) {
            require(record.problem().place.record > 0);
            require(record.problem().place.byte_offset.value_or(0) <= size);
            return false;
        }
        if (!*record) return true;
        require((*record)->length <= RECORD_LENGTH);
        require((*record)->number == records.size() + 1 && (*record)->file_offset <= size);
        const std::vector<std::uint8_t> area((*record)->data, (*record)->data + RECORD_LENGTH);
        for (std::size_t i = (*record)->length; i < area.size(); ++i) require(area[i] == ' ');
        records.emplace_back((*record)->data, (*record)->data + (*record)->length);
    }
}

void write(const conversion::RecordFormat& format, const std::string& name,
           const Records& records) {
    auto sink = conversion::ByteSink::open(name);
    require(static_cast<bool>(sink));
    const auto writer = conversion::write_records(format, *sink);
    for (const auto& record : records) require(!writer->add(record));
    require(!writer->close());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const MemoryFile file(data, size);
    auto source = conversion::ByteSource::open(file.name());
    require(static_cast<bool>(source));
    auto detected = conversion::detect_format(*source, RECORD_LENGTH);
    for (const conversion::RecordFormat& format : conversion::RecordFormat::with_lengths()) {
        Records records;
        const bool is_whole = read(format, file.name(), size, records);
        if (detected && detected->name == format.name) require(is_whole);
        const MemoryFile copy(nullptr, 0);
        write(format, copy.name(), records);
        Records again;
        require(read(format, copy.name(), std::size_t{1} << 30, again));
        require(again == records);
    }
    return 0;
}
