#include "conversion/formats/byte_sink.h"

#include <cerrno>
#include <cstring>
#include <utility>

#include "platform/descriptors.h"

namespace conversion {

namespace {

constexpr std::size_t BUFFER_SIZE = std::size_t{1} << 17;
constexpr const char* STANDARD_OUTPUT_NAME = "standard output";

}  // namespace

Result<ByteSink> ByteSink::open(const std::string& name, const std::string& shown_name) {
    if (name == "-") return ByteSink(STANDARD_OUTPUT_NAME, platform::STANDARD_OUTPUT);
    ByteSink sink(shown_name.empty() ? name : shown_name, platform::open_to_write(name.c_str()));
    if (sink.descriptor_ < 0) return system_problem(sink.shown_name_, errno);
    return sink;
}

ByteSink::ByteSink(std::string shown_name, int descriptor)
    : shown_name_(std::move(shown_name)),
      descriptor_(descriptor),
      buffer_(std::make_unique_for_overwrite<char[]>(BUFFER_SIZE)) {}

ByteSink::ByteSink(ByteSink&& other) noexcept
    : shown_name_(std::move(other.shown_name_)),
      descriptor_(std::exchange(other.descriptor_, -1)),
      buffer_(std::move(other.buffer_)),
      filled_(other.filled_) {}

ByteSink::~ByteSink() {
    if (descriptor_ >= 0) flush();
    if (descriptor_ > platform::STANDARD_ERROR) platform::close_descriptor(descriptor_);
}

Done ByteSink::move_to(std::uint64_t position) {
    const int error = platform::move_to(descriptor_, position);
    return error == 0 ? Done{} : system_problem(shown_name_, error);
}

Done ByteSink::write(const void* data, std::size_t size) {
    if (size <= BUFFER_SIZE - filled_) {
        std::memcpy(buffer_.get() + filled_, data, size);
        filled_ += size;
        return {};
    }
    if (Done problem = flush()) return problem;
    if (size <= BUFFER_SIZE) return write(data, size);
    const int error = platform::write_whole(descriptor_, static_cast<const char*>(data), size);
    return error == 0 ? Done{} : system_problem(shown_name_, error);
}

Done ByteSink::close() {
    if (Done problem = flush()) return problem;
    const int descriptor = std::exchange(descriptor_, -1);
    if (descriptor <= platform::STANDARD_ERROR) return {};
    const int error = platform::close_descriptor(descriptor);
    return error == 0 ? Done{} : system_problem(shown_name_, error);
}

Done ByteSink::flush() {
    const int error = platform::write_whole(descriptor_, buffer_.get(), filled_);
    filled_ = 0;
    return error == 0 ? Done{} : system_problem(shown_name_, error);
}

}  // namespace conversion
