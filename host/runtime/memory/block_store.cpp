#include "host/runtime/memory/block_store.h"

#include <array>
#include <cstdlib>
#include <cstring>

namespace host::memory {

namespace {

constexpr std::size_t CLASS_STEP = 16;
constexpr std::size_t CLASS_COUNT = 64;
constexpr std::size_t LARGEST_POOLED = CLASS_STEP * CLASS_COUNT;
constexpr std::size_t CHUNK_SIZE = std::size_t{64} * 1024;
constexpr std::size_t OVERHEAD = sizeof(BlockHeader) + 2 * GUARD_SIZE;
constexpr std::size_t LARGEST_SIZE = PTRDIFF_MAX - 4096;

struct alignas(16) Chunk {
    Chunk* next;
};

struct Pool {
    void* free_blocks;  // each free block's payload begins with the address of the next
    char* unused;       // the rest of the newest chunk
    char* unused_end;
    Chunk* chunks;
};

constinit std::array<Pool, CLASS_COUNT> pools{};
constinit LargePrefix* large_blocks = nullptr;

std::size_t class_bytes(std::size_t size_class) {
    return (size_class + 1) * CLASS_STEP;
}

LargePrefix* prefix_of(const BlockHeader* header) {
    return reinterpret_cast<LargePrefix*>(const_cast<BlockHeader*>(header)) - 1;
}

BlockHeader* header_behind(LargePrefix* prefix) {
    return reinterpret_cast<BlockHeader*>(prefix + 1);
}

void link_large(LargePrefix* prefix) {
    prefix->previous = nullptr;
    prefix->next = large_blocks;
    if (large_blocks != nullptr) large_blocks->previous = prefix;
    large_blocks = prefix;
}

void unlink_large(LargePrefix* prefix) {
    if (prefix->next != nullptr) prefix->next->previous = prefix->previous;
    if (prefix->previous != nullptr) {
        prefix->previous->next = prefix->next;
    } else {
        large_blocks = prefix->next;
    }
}

BlockHeader* take_large(std::size_t size, bool zeroed) {
    const std::size_t bytes = sizeof(LargePrefix) + OVERHEAD + size;
    auto* prefix = static_cast<LargePrefix*>(zeroed ? std::calloc(1, bytes) : std::malloc(bytes));
    if (prefix == nullptr) return nullptr;
    prefix->size = size;
    link_large(prefix);
    BlockHeader* header = header_behind(prefix);
    header->size_class = LARGE_CLASS;
    return header;
}

bool add_chunk(Pool& pool) {
    auto* chunk = static_cast<Chunk*>(std::malloc(CHUNK_SIZE));
    if (chunk == nullptr) return false;
    chunk->next = pool.chunks;
    pool.chunks = chunk;
    pool.unused = reinterpret_cast<char*>(chunk + 1);
    pool.unused_end = reinterpret_cast<char*>(chunk) + CHUNK_SIZE;
    return true;
}

BlockHeader* take_small(std::size_t size, std::size_t size_class, bool zeroed) {
    Pool& pool = pools[size_class];
    BlockHeader* header = nullptr;
    if (pool.free_blocks != nullptr) {
        header = header_of(pool.free_blocks);
        std::memcpy(&pool.free_blocks, pool.free_blocks, sizeof pool.free_blocks);
    } else {
        const std::size_t bytes = class_bytes(size_class);
        if (static_cast<std::size_t>(pool.unused_end - pool.unused) < bytes && !add_chunk(pool)) {
            return nullptr;
        }
        header = reinterpret_cast<BlockHeader*>(pool.unused);
        pool.unused += bytes;
        header->size_class = static_cast<std::uint8_t>(size_class);
    }
    header->size = static_cast<std::uint32_t>(size);
    if (zeroed) std::memset(payload_of(header), 0, size);
    return header;
}

// The size class of a payload, LARGE_CLASS when it does not go into a pool. A payload has room for
// the link of a free block at least.
std::size_t class_of(std::size_t size) {
    const std::size_t bytes = OVERHEAD + (size < sizeof(void*) ? sizeof(void*) : size);
    return USES_POOLS && bytes <= LARGEST_POOLED ? (bytes - 1) / CLASS_STEP : LARGE_CLASS;
}

BlockHeader* resize_large(BlockHeader* header, std::size_t size) {
    LargePrefix* prefix = prefix_of(header);
    unlink_large(prefix);
    void* moved = std::realloc(prefix, sizeof(LargePrefix) + OVERHEAD + size);
    if (moved != nullptr) prefix = static_cast<LargePrefix*>(moved);
    link_large(prefix);
    if (moved == nullptr) return nullptr;
    prefix->size = size;
    return header_behind(prefix);
}

void visit_chunk(const Pool& pool, const Chunk* chunk, std::size_t bytes,
                 void (*visit)(const BlockHeader*, void*), void* context) {
    const char* block = reinterpret_cast<const char*>(chunk + 1);
    // Only the newest chunk has a part that was never used.
    const char* end =
        chunk == pool.chunks ? pool.unused : reinterpret_cast<const char*>(chunk) + CHUNK_SIZE;
    for (; static_cast<std::size_t>(end - block) >= bytes; block += bytes) {
        const auto* header = reinterpret_cast<const BlockHeader*>(block);
        if (header->sequence != 0) visit(header, context);
    }
}

}  // namespace

std::size_t block_size(const BlockHeader* header) {
    return header->size_class == LARGE_CLASS ? prefix_of(header)->size : header->size;
}

std::size_t gross_size(const BlockHeader* header) {
    return header->size_class == LARGE_CLASS
               ? prefix_of(header)->size + sizeof(LargePrefix) + OVERHEAD
               : class_bytes(header->size_class);
}

BlockHeader* take_block(std::size_t size, bool zeroed) {
    if (size > LARGEST_SIZE) return nullptr;
    const std::size_t size_class = class_of(size);
    return size_class == LARGE_CLASS ? take_large(size, zeroed)
                                     : take_small(size, size_class, zeroed);
}

BlockHeader* resize_block(BlockHeader* header, std::size_t size) {
    if (size > LARGEST_SIZE) return nullptr;
    const std::size_t size_class = class_of(size);
    if (size_class == header->size_class) {
        if (size_class == LARGE_CLASS) return resize_large(header, size);
        header->size = static_cast<std::uint32_t>(size);
        return header;
    }
    BlockHeader* moved = take_block(size, false);
    if (moved == nullptr) return nullptr;
    const std::size_t old_size = block_size(header);
    std::memcpy(payload_of(moved), payload_of(header), old_size < size ? old_size : size);
    moved->sequence = header->sequence;
    moved->site = header->site;
    give_back(header);
    return moved;
}

void give_back(BlockHeader* header) {
    if (header->size_class == LARGE_CLASS) {
        LargePrefix* prefix = prefix_of(header);
        unlink_large(prefix);
        std::free(prefix);
        return;
    }
    Pool& pool = pools[header->size_class];
    header->sequence = 0;
    void* payload = payload_of(header);
    std::memcpy(payload, &pool.free_blocks, sizeof pool.free_blocks);
    pool.free_blocks = payload;
}

void visit_live_blocks(void (*visit)(const BlockHeader*, void*), void* context) {
    for (std::size_t size_class = 0; size_class < CLASS_COUNT; ++size_class) {
        const Pool& pool = pools[size_class];
        for (const Chunk* chunk = pool.chunks; chunk != nullptr; chunk = chunk->next) {
            visit_chunk(pool, chunk, class_bytes(size_class), visit, context);
        }
    }
    for (LargePrefix* prefix = large_blocks; prefix != nullptr; prefix = prefix->next) {
        visit(header_behind(prefix), context);
    }
}

}  // namespace host::memory
