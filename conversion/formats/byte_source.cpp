#include "conversion/formats/byte_source.h"

#include <cerrno>
#include <utility>

#include "platform/descriptors.h"

namespace conversion {

namespace {

constexpr const char* STANDARD_INPUT_NAME = "standard input";

}  // namespace

Result<ByteSource> ByteSource::open(const std::string& name) {
    if (name == "-") return ByteSource(STANDARD_INPUT_NAME, platform::STANDARD_INPUT);
    ByteSource source(name, platform::open_to_read(name.c_str()));
    if (source.descriptor_ < 0) return system_problem(name, errno);
    const auto state = platform::state_of(source.descriptor_);
    if (state && state->kind == platform::FileKind::folder) return system_problem(name, EISDIR);
    return source;
}

ByteSource::ByteSource(std::string name, int descriptor)
    : name_(std::move(name)), descriptor_(descriptor) {}

ByteSource::ByteSource(ByteSource&& other) noexcept
    : name_(std::move(other.name_)), descriptor_(std::exchange(other.descriptor_, -1)) {}

ByteSource::~ByteSource() {
    if (descriptor_ > platform::STANDARD_ERROR) platform::close_descriptor(descriptor_);
}

Result<std::size_t> ByteSource::read(std::uint8_t* buffer, std::size_t size) {
    std::size_t filled = 0;
    while (filled < size) {
        const auto count = platform::read_some(
            descriptor_, reinterpret_cast<char*>(buffer) + filled, size - filled);
        if (count < 0) return system_problem(name_, errno);
        if (count == 0) break;
        filled += static_cast<std::size_t>(count);
    }
    return filled;
}

std::optional<std::uint64_t> ByteSource::size() const {
    const auto state = platform::state_of(descriptor_);
    if (!state || state->kind != platform::FileKind::regular) return std::nullopt;
    return state->size;
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
