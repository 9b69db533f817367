#include "conversion/formats/length_header.h"

namespace conversion {

namespace {

constexpr std::uint8_t LARGE_BLOCK = 0x80;

}  // namespace

std::uint32_t LengthHeader::length_in(const std::uint8_t* bytes) const {
    std::uint32_t length = 0;
    for (std::size_t i = 0; i < length_size; ++i) {
        length = length << 8 | bytes[is_little ? length_size - 1U - i : i];
    }
    return length;
}

std::optional<std::size_t> LengthHeader::payload(std::uint32_t length) const {
    if (counts_itself) {
        return length < size ? std::nullopt : std::optional<std::size_t>(length - size);
    }
    return length == 0 ? std::nullopt : std::optional<std::size_t>(length);
}

std::optional<Segment> LengthHeader::segment_in(const std::uint8_t* bytes) const {
    if (length_size == size) return Segment::whole;
    const std::uint8_t most = has_segments ? 3 : 0;
    if (bytes[2] > most || bytes[3] != 0) return std::nullopt;
    return static_cast<Segment>(bytes[2]);
}

std::size_t LengthHeader::longest_payload() const {
    const std::size_t longest = length_size == 2 ? 0xFFFF : 0xFFFFFFFF;
    return counts_itself ? longest - size : longest;
}

std::array<std::uint8_t, LengthHeader::MOST_BYTES> LengthHeader::make(std::size_t payload,
                                                                      Segment segment) const {
    std::array<std::uint8_t, MOST_BYTES> bytes{};
    std::size_t length = counts_itself ? payload + size : payload;
    for (std::size_t i = 0; i < length_size; ++i) {
        bytes[is_little ? i : length_size - 1U - i] = static_cast<std::uint8_t>(length & 0xFF);
        length >>= 8;
    }
    if (has_segments) bytes[2] = static_cast<std::uint8_t>(segment);
    return bytes;
}

std::optional<std::size_t> block_payload(const std::uint8_t* bytes) {
    const bool is_large = (bytes[0] & LARGE_BLOCK) != 0;
    if (!is_large && (bytes[2] != 0 || bytes[3] != 0)) return std::nullopt;
    std::size_t length = (bytes[0] & ~LARGE_BLOCK & 0xFFU) << 8 | bytes[1];
    if (is_large) length = length << 16 | std::size_t{bytes[2]} << 8 | bytes[3];
    if (length <= BLOCK_HEADER) return std::nullopt;
    return length - BLOCK_HEADER;
}

}  // namespace conversion
