#include "conversion/formats/byte_source.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "platform/descriptors.h"

namespace conversion {

namespace {

constexpr const char* STANDARD_INPUT_NAME = "standard input";

// Reads until there are `size` bytes, or the end. Result: the number of bytes, or -1.
std::ptrdiff_t read_whole(int descriptor, std::uint8_t* buffer, std::size_t size) {
    std::size_t filled = 0;
    while (filled < size) {
        const auto count = platform::read_some(descriptor, reinterpret_cast<char*>(buffer) + filled,
                                               size - filled);
        if (count < 0) return -1;
        if (count == 0) break;
        filled += static_cast<std::size_t>(count);
    }
    return static_cast<std::ptrdiff_t>(filled);
}

}  // namespace

Result<ByteSource> ByteSource::open(const std::string& name, const std::string& shown_name) {
    if (name == "-") return ByteSource(STANDARD_INPUT_NAME, platform::STANDARD_INPUT);
    ByteSource source(shown_name.empty() ? name : shown_name, platform::open_to_read(name.c_str()));
    if (source.descriptor_ < 0) return system_problem(source.name_, errno);
    return source;
}

ByteSource::ByteSource(std::string name, int descriptor)
    : name_(std::move(name)), descriptor_(descriptor) {}

ByteSource::ByteSource(ByteSource&& other) noexcept
    : name_(std::move(other.name_)),
      descriptor_(std::exchange(other.descriptor_, -1)),
      offset_(other.offset_),
      ahead_(std::move(other.ahead_)),
      left_out_at_end_(other.left_out_at_end_) {}

ByteSource::~ByteSource() {
    if (descriptor_ > platform::STANDARD_ERROR) platform::close_descriptor(descriptor_);
}

// Of a pipe, so many bytes as are left out at the end are always held back.
Done ByteSource::leave_out(std::uint64_t at_start, std::uint64_t at_end) {
    const auto too_few = [&](std::uint64_t size) {
        Place place;
        place.file = name_;
        return Problem{Cause::usage, place,
                       "there are only " + std::to_string(size) + " bytes to leave " +
                           std::to_string(at_start) + " and " + std::to_string(at_end) + " out of",
                       ""};
    };
    constexpr std::size_t PIECE = std::size_t{1} << 16;
    while (offset_ < at_start) {
        std::vector<std::uint8_t> passed(
            static_cast<std::size_t>(std::min<std::uint64_t>(PIECE, at_start - offset_)));
        const Result<std::size_t> count = read(passed.data(), passed.size());
        if (!count) return count.problem();
        if (*count == 0) return too_few(offset_);
    }
    constexpr std::uint64_t MOST = std::uint64_t{1} << 30;
    if (at_end > MOST) return too_few(size().value_or(offset_));
    const auto held = static_cast<std::size_t>(at_end);
    if (const Done problem = read_ahead(held)) return problem;
    if (ahead_.size() < held) return too_few(offset_ + ahead_.size());
    left_out_at_end_ = held;
    return std::nullopt;
}

// Has at least `size` bytes read ahead, if there are so many.
Done ByteSource::read_ahead(std::size_t size) {
    if (ahead_.size() >= size) return std::nullopt;
    const std::size_t before = ahead_.size();
    ahead_.resize(size);
    const std::ptrdiff_t count = read_whole(descriptor_, ahead_.data() + before, size - before);
    const int error = errno;
    ahead_.resize(before + static_cast<std::size_t>(std::max<std::ptrdiff_t>(count, 0)));
    return count < 0 ? Done(system_problem(name_, error)) : std::nullopt;
}

Result<std::size_t> ByteSource::read(std::uint8_t* buffer, std::size_t size) {
    if (ahead_.empty()) {
        const std::ptrdiff_t count = read_whole(descriptor_, buffer, size);
        if (count < 0) return system_problem(name_, errno);
        offset_ += static_cast<std::uint64_t>(count);
        return static_cast<std::size_t>(count);
    }
    if (const Done problem = read_ahead(size + left_out_at_end_)) return *problem;
    const std::size_t count = std::min(size, ahead_.size() - left_out_at_end_);
    const auto end = ahead_.begin() + static_cast<std::ptrdiff_t>(count);
    std::copy(ahead_.begin(), end, buffer);
    ahead_.erase(ahead_.begin(), end);
    offset_ += count;
    return count;
}

Result<std::span<const std::uint8_t>> ByteSource::peek(std::size_t size) {
    if (const Done problem = read_ahead(size + left_out_at_end_)) return *problem;
    return std::span<const std::uint8_t>(ahead_).first(
        std::min(size, ahead_.size() - left_out_at_end_));
}

std::optional<std::uint64_t> ByteSource::size() const {
    const auto state = platform::state_of(descriptor_);
    if (!state || state->kind != platform::FileKind::regular) return std::nullopt;
    return state->size - std::min<std::uint64_t>(state->size, left_out_at_end_);
}

Result<std::string> read_all(ByteSource& source) {
    constexpr std::size_t piece = std::size_t{1} << 16;
    std::string text;
    for (;;) {
        const std::size_t size = text.size();
        text.resize(size + piece);
        const Result<std::size_t> count =
            source.read(reinterpret_cast<std::uint8_t*>(text.data()) + size, piece);
        if (!count) return count.problem();
        text.resize(size + *count);
        if (*count < piece) return text;
    }
}

}  // namespace conversion
