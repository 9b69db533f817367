// Buffered streams over the system's descriptors.
//
// An output stream's buffer begins at a known place in the file. A step back within the buffer only
// moves the position; what lies after the position is dead, since it is overwritten or cut off. An
// output that cannot seek keeps at least the last MiB in its buffer for that.
#include "host/files.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "host/runtime/memory/immortal.h"
#include "host/runtime/memory/memory_failure.h"
#include "host/runtime/settings/settings.h"
#include "host/runtime/streams.h"
#include "host/runtime/write_failures.h"
#include "platform/descriptors.h"
#include "platform/files.h"
#include "platform/shared_files.h"

namespace {

constexpr std::size_t BUFFER_SIZE = std::size_t{64} * 1024;
constexpr std::size_t KEPT_WITHOUT_SEEK = std::size_t{1024} * 1024;
constexpr std::size_t LARGEST_BUFFER = 2 * KEPT_WITHOUT_SEEK;

enum class Direction { input, output };

// The buffers of the process's own streams are there without an allocation that could fail.
struct BufferRelease {
    bool is_static = false;
    void operator()(char* buffer) const {
        if (!is_static) delete[] buffer;
    }
};
using Buffer = std::unique_ptr<char[], BufferRelease>;

}  // namespace

struct HostStream {
    int descriptor = -1;
    Direction direction = Direction::input;
    bool is_own = false;    // closed and released by host_fclose
    bool can_seek = false;  // output: a step back beyond the buffer is possible
    bool is_written_through = false;
    bool has_failed = false;
    std::string name;
    Buffer buffer;
    std::size_t capacity = 0;        // 0 after a write error: nothing is taken over any more
    std::size_t position = 0;        // in the buffer, of the next byte
    std::size_t filled = 0;          // input: bytes in the buffer
    std::uint64_t buffer_start = 0;  // output: where in the file the buffer begins
    std::uint64_t first_position = 0;
    std::uint64_t flushed_end = 0;  // output: after the last byte that was ever written to the file
    std::unique_ptr<host::InputPart> part;  // input: the rest of a part, not read yet
};

namespace {

std::size_t largest_read = 0;  // 0 = no limit
std::size_t open_count = 0;
int open_error = 0;
// The last result of host_xfd_name. An array, since a string would be destroyed with the thread,
// and the C library ends the process when it has no memory to register that.
thread_local constinit std::array<char, PATH_MAX> description_name{};
constinit const std::string* output_name = nullptr;  // those of the OutputName that lives
constinit const std::string* output_file = nullptr;
constinit const host::InputPartScope* input_part = nullptr;      // the one that lives
constinit const host::OutputStartScope* output_start = nullptr;  // the same

void fail(HostStream* stream, int error) {
    if (!stream->has_failed) host::remember_write_failure(stream->name, error);
    stream->has_failed = true;
    stream->capacity = 0;
    stream->position = 0;
    errno = error;
}

void give_buffer(HostStream* stream) {
    stream->buffer = Buffer(new char[BUFFER_SIZE]);
    stream->capacity = BUFFER_SIZE;
}

// Writes the first `count` buffered bytes to the file and moves the rest to the front.
bool flush_front(HostStream* stream, std::size_t count) {
    if (stream->has_failed) return false;
    if (const int error = platform::write_whole(stream->descriptor, stream->buffer.get(), count);
        error != 0) {
        fail(stream, error);
        return false;
    }
    stream->buffer_start += count;
    stream->flushed_end = std::max(stream->flushed_end, stream->buffer_start);
    stream->position -= count;
    std::memmove(stream->buffer.get(), stream->buffer.get() + count, stream->position);
    return true;
}

bool enlarge_buffer(HostStream* stream) {
    const std::size_t larger = std::min(stream->capacity * 2, LARGEST_BUFFER);
    auto buffer = Buffer(new (std::nothrow) char[larger]);
    if (buffer == nullptr) return false;
    std::memcpy(buffer.get(), stream->buffer.get(), stream->position);
    stream->buffer = std::move(buffer);
    stream->capacity = larger;
    return true;
}

// Makes room in a full buffer.
bool make_room(HostStream* stream) {
    if (stream->can_seek) return flush_front(stream, stream->position);
    if (stream->capacity < LARGEST_BUFFER) {
        if (enlarge_buffer(stream)) return true;
        fail(stream, ENOMEM);
        return false;
    }
    return flush_front(stream, stream->position - KEPT_WITHOUT_SEEK);
}

bool write_bytes(HostStream* stream, const char* data, std::size_t size) {
    if (stream->direction != Direction::output || stream->has_failed) return false;
    while (size > 0) {
        const std::size_t part = std::min(size, stream->capacity - stream->position);
        std::memcpy(stream->buffer.get() + stream->position, data, part);
        stream->position += part;
        data += part;
        size -= part;
        if (size > 0 && !make_room(stream)) return false;
    }
    return !stream->is_written_through || flush_front(stream, stream->position);
}

// Writes out the rest and cuts a file that was longer before a step back.
void finish_output(HostStream* stream) {
    if (!flush_front(stream, stream->position)) return;
    if (stream->flushed_end <= stream->buffer_start || !stream->can_seek) return;
    const int error = platform::cut_file(stream->descriptor, stream->buffer_start);
    if (error != 0) fail(stream, error);
}

void find_start(HostStream* stream) {
    const auto start = platform::output_position(stream->descriptor);
    stream->can_seek = start.has_value();
    stream->first_position = start.value_or(0);
    stream->buffer_start = stream->first_position;
    stream->flushed_end = stream->first_position;
}

// Result: as it is; on failure it is closed.
int at_position(int descriptor, std::uint64_t position) {
    if (descriptor < 0) return descriptor;
    const int error = platform::move_to(descriptor, position);
    if (error == 0) return descriptor;
    platform::close_descriptor(descriptor);
    errno = error;
    return -1;
}

int open_output(const char* name) {
    if (output_start == nullptr || output_start->file() != name) {
        return platform::open_to_write(name);
    }
    return at_position(platform::open_to_write_into(name), output_start->position());
}

int open_input(const char* name, const host::InputPart* part) {
    const int descriptor = platform::open_to_read(name);
    return part != nullptr ? at_position(descriptor, part->begin) : descriptor;
}

void remember_open_failure(int error) {
    if (open_error == 0 || open_error == ENOENT) open_error = error;
}

// Reads into the buffer what comes next of a part. Result as platform::read_some.
ssize_t read_of_part(HostStream* stream) {
    host::InputPart& part = *stream->part;
    std::string& text = part.before.empty() && part.begin == part.end ? part.after : part.before;
    if (!text.empty()) {
        const std::size_t count = text.copy(stream->buffer.get(), stream->capacity);
        text.erase(0, count);
        return static_cast<ssize_t>(count);
    }
    const std::uint64_t wanted = std::min<std::uint64_t>(stream->capacity, part.end - part.begin);
    if (wanted == 0) return 0;
    const ssize_t count = platform::read_some(stream->descriptor, stream->buffer.get(),
                                              static_cast<std::size_t>(wanted));
    if (count > 0) part.begin += static_cast<std::uint64_t>(count);
    return count;
}

bool is_process_stream(std::string_view name) {
    return name == "-";
}

HostStream* open_stream(const char* name, Direction direction) {
    auto stream = std::make_unique<HostStream>();
    stream->name = name;
    stream->direction = direction;
    stream->is_own = true;
    give_buffer(stream.get());
    if (direction == Direction::input && input_part != nullptr && input_part->file() == name) {
        stream->part = std::make_unique<host::InputPart>(input_part->part());
    }
    if (is_process_stream(name)) {
        stream->descriptor =
            direction == Direction::output ? platform::STANDARD_OUTPUT : platform::STANDARD_INPUT;
    } else {
        const bool is_named =
            direction == Direction::output && output_name != nullptr && *output_name == name;
        stream->descriptor = direction == Direction::output
                                 ? open_output(is_named ? output_file->c_str() : name)
                                 : open_input(name, stream->part.get());
        if (stream->descriptor < 0) return nullptr;
    }
    if (direction == Direction::output) find_start(stream.get());
    ++open_count;
    return stream.release();
}

// A stream that lasts as long as the process. Its name is short enough to need no memory.
struct ProcessStream {
    ProcessStream(int descriptor, Direction direction, const char* name) {
        stream->descriptor = descriptor;
        stream->direction = direction;
        stream->is_written_through = direction == Direction::output;
        stream->name = name;
        stream->buffer = Buffer(bytes, BufferRelease{true});
        stream->capacity = sizeof bytes;
    }

    host::Immortal<HostStream> stream;
    char bytes[BUFFER_SIZE];
};

// Returns buffered bytes, or, when there are none, the result of one read.
std::size_t read_part(HostStream* stream, char* target, std::size_t size) {
    if (stream->position == stream->filled) {
        const ssize_t count =
            stream->part != nullptr
                ? read_of_part(stream)
                : platform::read_some(stream->descriptor, stream->buffer.get(), stream->capacity);
        if (count < 0) host::remember_read_failure(stream->name, errno);
        if (count <= 0) return 0;
        stream->position = 0;
        stream->filled = static_cast<std::size_t>(count);
    }
    const std::size_t part = std::min(size, stream->filled - stream->position);
    std::memcpy(target, stream->buffer.get() + stream->position, part);
    stream->position += part;
    return part;
}

// False when the bytes of all items make no size.
bool total_size(std::size_t size, std::size_t count, std::size_t* total) {
    return !__builtin_mul_overflow(size, count, total);
}

}  // namespace

HostStream* host_fopen(const char* name, const char* mode, int /*flag*/) {
    host::refresh_environment();
    const std::string_view wanted = mode != nullptr ? mode : "";
    const bool is_output = wanted == "w" || wanted == "wb";
    if (name == nullptr || (!is_output && wanted != "r")) {
        errno = EINVAL;
        return nullptr;
    }
    try {
        HostStream* stream = open_stream(name, is_output ? Direction::output : Direction::input);
        if (stream == nullptr) remember_open_failure(errno);
        return stream;
    } catch (const std::bad_alloc&) {
        host::note_memory_failure();
        remember_open_failure(ENOMEM);
        errno = ENOMEM;
        return nullptr;
    }
}

void host_fclose(HostStream* stream) {
    if (stream == nullptr) return;
    if (stream->direction == Direction::output) finish_output(stream);
    if (!stream->is_own) return;
    if (!is_process_stream(stream->name)) {
        const int error = platform::close_descriptor(stream->descriptor);
        if (error != 0 && stream->direction == Direction::output) fail(stream, error);
    }
    --open_count;
    delete stream;
}

std::size_t host_fread(void* buffer, std::size_t size, std::size_t count, HostStream* stream) {
    std::size_t wanted = 0;
    if (stream == nullptr || stream->direction != Direction::input || size == 0 ||
        !total_size(size, count, &wanted)) {
        return 0;
    }
    if (largest_read > 0)
        wanted = std::min(wanted, std::max(largest_read / size, std::size_t{1}) * size);
    char* target = static_cast<char*>(buffer);
    std::size_t done = 0;
    // One part is enough, so that input from a terminal or a pipe is seen as it comes; but an item
    // is never split.
    do {
        const std::size_t part = read_part(stream, target + done, wanted - done);
        if (part == 0) break;
        done += part;
    } while (done % size != 0);
    return done / size;
}

std::size_t host_fwrite(const void* data, std::size_t size, std::size_t count, HostStream* stream) {
    std::size_t bytes = 0;
    if (stream == nullptr || !total_size(size, count, &bytes) || bytes == 0) return 0;
    if (bytes < stream->capacity - stream->position && stream->direction == Direction::output &&
        !stream->is_written_through) {
        std::memcpy(stream->buffer.get() + stream->position, data, bytes);
        stream->position += bytes;
        return count;
    }
    return write_bytes(stream, static_cast<const char*>(data), bytes) ? count : 0;
}

std::uint32_t host_ftell(HostStream* stream) {
    return stream != nullptr ? static_cast<std::uint32_t>(stream->buffer_start + stream->position)
                             : 0;
}

void host_fseek(HostStream* stream, std::uint32_t position) {
    if (stream == nullptr || stream->direction != Direction::output || stream->has_failed) return;
    const std::uint64_t step = host_ftell(stream) - position;  // the low 32 bits of the way back
    const std::uint64_t way_back = static_cast<std::uint32_t>(step);
    if (way_back <= stream->position) {
        stream->position -= way_back;
        return;
    }
    const std::uint64_t present = stream->buffer_start + stream->position;
    if (way_back > present - stream->first_position) return fail(stream, EINVAL);
    if (!stream->can_seek) return fail(stream, ESPIPE);
    // The buffered bytes are after the new position: they are never written.
    const std::uint64_t target = present - way_back;
    const int error = platform::move_to(stream->descriptor, target);
    if (error != 0) return fail(stream, error);
    stream->buffer_start = target;
    stream->position = 0;
}

HostStream* host_standard_input() {
    static ProcessStream input(platform::STANDARD_INPUT, Direction::input, "standard input");
    return &*input.stream;
}

HostStream* host_standard_error() {
    static ProcessStream output(platform::STANDARD_ERROR, Direction::output, "standard error");
    return &*output.stream;
}

int host_remove_file(const char* name) {
    if (name == nullptr) {
        errno = EINVAL;
        return -1;
    }
    const int error = platform::remove_file(name);
    if (error != 0) errno = error;
    return error == 0 ? 0 : -1;
}

const char* host_xfd_name(const char* data_file_name) {
    host::refresh_environment();
    const std::string_view name = data_file_name != nullptr ? data_file_name : "";
    if (name.size() >= description_name.size()) return data_file_name;  // names no file
    description_name[name.copy(description_name.data(), name.size())] = '\0';
    return description_name.data();
}

namespace host {

OutputName::OutputName(const std::string& name, const std::string& file)
    : name_(name), file_(file) {
    output_name = &name_;
    output_file = &file_;
}

OutputName::~OutputName() {
    output_name = nullptr;
    output_file = nullptr;
}

InputPartScope::InputPartScope(const std::string& file, const InputPart& part)
    : file_(file), part_(part) {
    input_part = this;
}

InputPartScope::~InputPartScope() {
    input_part = nullptr;
}

OutputStartScope::OutputStartScope(const std::string& file, std::uint64_t position)
    : file_(file), position_(position) {
    output_start = this;
}

OutputStartScope::~OutputStartScope() {
    output_start = nullptr;
}

void limit_read_size(std::size_t bytes) {
    largest_read = bytes;
}
int take_open_failure() {
    return std::exchange(open_error, 0);
}
std::size_t open_streams() {
    return open_count;
}

}  // namespace host
