// Where tracked blocks lie. Small blocks come from pools of one size class each, large ones from
// the system's allocator; both are found again for the report of live blocks.
//
// A block in memory:  [LargePrefix]  BlockHeader  [guard]  payload  [guard]
// The prefix is there for large blocks only, the guards only in builds that have them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace host::memory {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool USES_POOLS = false;  // so that the sanitizer sees each block by itself
#else
constexpr bool USES_POOLS = true;
#endif
#if defined(NDEBUG) || defined(__SANITIZE_ADDRESS__)
constexpr bool HAS_GUARDS = false;
#else
constexpr bool HAS_GUARDS = true;
#endif

constexpr std::size_t GUARD_SIZE = HAS_GUARDS ? 16 : 0;
constexpr std::uint8_t LARGE_CLASS = 0xFF;

struct BlockHeader {
    std::uint64_t sequence : 56;  // order of allocation, from 1; 0 in a free block
    std::uint64_t size_class : 8;
    std::uint32_t site;
    std::uint32_t size;  // of a small block; a large one's size is in its prefix
};
static_assert(sizeof(BlockHeader) == 16);

struct alignas(16) LargePrefix {
    LargePrefix* next;
    LargePrefix* previous;
    std::size_t size;
};

inline void* payload_of(BlockHeader* header) {
    return reinterpret_cast<char*>(header + 1) + GUARD_SIZE;
}
inline BlockHeader* header_of(void* block) {
    return reinterpret_cast<BlockHeader*>(static_cast<char*>(block) - GUARD_SIZE) - 1;
}
inline const BlockHeader* header_of(const void* block) {
    return reinterpret_cast<const BlockHeader*>(static_cast<const char*>(block) - GUARD_SIZE) - 1;
}

std::size_t block_size(const BlockHeader* header);
// Bytes that the block takes in all.
std::size_t gross_size(const BlockHeader* header);

// A block with size and size class set; its other header fields and, unless asked for, its contents
// are undefined. Null when memory is exhausted.
BlockHeader* take_block(std::size_t size, bool zeroed);
// Changes a block's size in place or moves it with its contents. Null: nothing has changed.
BlockHeader* resize_block(BlockHeader* header, std::size_t size);
void give_back(BlockHeader* header);

// Calls visit(header, context) for each live block, in no order.
void visit_live_blocks(void (*visit)(const BlockHeader*, void*), void* context);

}  // namespace host::memory
