// The header with a length that stands before a record, a segment of one, or a block.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace conversion {

// Which part of a record follows a header; the values of its third byte.
enum class Segment : std::uint8_t { whole = 0, first = 1, last = 2, middle = 3 };

struct LengthHeader {
    static constexpr std::size_t MOST_BYTES = 4;

    std::uint8_t size = 4;         // bytes
    std::uint8_t length_size = 2;  // of these, the first two or all four hold the length
    bool is_little = false;        // with the least significant byte first
    bool counts_itself = false;    // the length is that of the header and of what follows
    bool has_segments = false;     // the third byte says which part of a record follows

    // The length as it stands in a header.
    std::uint32_t length_in(const std::uint8_t* bytes) const;
    // Bytes after a header with this length; nothing when a header cannot have it.
    std::optional<std::size_t> payload(std::uint32_t length) const;
    // What follows; nothing when the bytes after the length are not what they must be.
    std::optional<Segment> segment_in(const std::uint8_t* bytes) const;
    // The longest that can follow, bytes.
    std::size_t longest_payload() const;
    // A header, of which the first `size` bytes count. `payload` is at most longest_payload().
    std::array<std::uint8_t, MOST_BYTES> make(std::size_t payload,
                                              Segment segment = Segment::whole) const;
};

// Bytes of the header of a block.
constexpr std::size_t BLOCK_HEADER = 4;

// The header of a block: a record's of four bytes that counts itself, or, with the first bit set,
// a length in the other 31 bits. Result: bytes after it; nothing when it is not one.
std::optional<std::size_t> block_payload(const std::uint8_t* bytes);

}  // namespace conversion
