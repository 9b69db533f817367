// The handle registry. A handle is a slot number with the slot's generation above it; slots lie in
// chunks of one type each, so that a walk over a type sees no other objects and no slot needs to
// say its type.
#include "host/handles.h"

#include <cstdlib>
#include <new>
#include <vector>

#include "host/runtime/memory/immortal.h"
#include "host/runtime/memory/memory_failure.h"
#include "host/runtime/memory/tracked_memory.h"

namespace host {
namespace {

constexpr std::uint32_t INDEX_BITS = 26;
constexpr std::uint32_t CHUNK_BITS = 10;
constexpr std::uint32_t CHUNK_SLOTS = 1U << CHUNK_BITS;
constexpr std::uint32_t MAX_CHUNKS = 1U << (INDEX_BITS - CHUNK_BITS);
// Generations run from 1 to 62, so that no handle is 0 or 0xFFFFFFFF.
constexpr std::uint32_t LAST_GENERATION = 62;
// A freed slot is used again only when this many are free: a stale handle stays recognisable over
// some 60,000 new objects of its type at least.
constexpr std::uint32_t SLOTS_IN_REST = 1024;
constexpr std::uint32_t NO_SLOT = 0xFFFFFFFF;

constexpr std::uint8_t LIVE = 0x80;
constexpr std::uint8_t RELEASING = 0x40;
constexpr std::uint8_t GENERATION = 0x3F;

union SlotContent {
    void* object;             // of a live slot
    std::uint32_t next_free;  // of a free one
};

struct SlotChunk {
    std::uint32_t type;
    std::uint32_t next_of_type;  // number of the type's next chunk, NO_SLOT after the last
    std::uint32_t live;
    std::uint8_t states[CHUNK_SLOTS];  // generation and the bits above
    SlotContent contents[CHUNK_SLOTS];
};

struct Type {
    HostHandleType descriptor;
    std::uint32_t first_chunk;
    std::uint32_t last_chunk;
    std::uint32_t unused;      // first slot of the last chunk that was never used
    std::uint32_t unused_end;  // after its last slot
    std::uint32_t first_free;  // queue of free slots, longest free first
    std::uint32_t last_free;
    std::uint32_t free_count;
};

constinit SlotChunk* chunks[MAX_CHUNKS] = {};
constinit std::uint32_t chunk_count = 0;
constinit Immortal<std::vector<Type>> types;

SlotChunk& chunk_of(std::uint32_t slot) {
    return *chunks[slot >> CHUNK_BITS];
}
std::uint8_t& state_of(std::uint32_t slot) {
    return chunk_of(slot).states[slot & (CHUNK_SLOTS - 1)];
}
SlotContent& content_of(std::uint32_t slot) {
    return chunk_of(slot).contents[slot & (CHUNK_SLOTS - 1)];
}
std::uint32_t slot_of(std::uint32_t handle) {
    return handle & ((1U << INDEX_BITS) - 1);
}

std::uint32_t handle_of(std::uint32_t slot) {
    return (static_cast<std::uint32_t>(state_of(slot) & GENERATION) << INDEX_BITS) | slot;
}

bool is_live(std::uint32_t handle) {
    const std::uint32_t slot = slot_of(handle);
    if ((slot >> CHUNK_BITS) >= chunk_count) return false;
    const std::uint8_t state = state_of(slot);
    return (state & LIVE) != 0 &&
           static_cast<std::uint32_t>(state & GENERATION) == handle >> INDEX_BITS;
}

bool add_chunk(std::uint32_t type_id) {
    if (chunk_count == MAX_CHUNKS) return false;
    auto* chunk = static_cast<SlotChunk*>(std::calloc(1, sizeof(SlotChunk)));
    if (chunk == nullptr) return false;
    Type& type = (*types)[type_id - 1];
    chunk->type = type_id;
    chunk->next_of_type = NO_SLOT;
    if (type.last_chunk == NO_SLOT) {
        type.first_chunk = chunk_count;
    } else {
        chunks[type.last_chunk]->next_of_type = chunk_count;
    }
    type.last_chunk = chunk_count;
    type.unused = chunk_count << CHUNK_BITS;
    type.unused_end = type.unused + CHUNK_SLOTS;
    chunks[chunk_count++] = chunk;
    return true;
}

std::uint32_t take_rested_slot(Type& type) {
    const std::uint32_t slot = type.first_free;
    type.first_free = content_of(slot).next_free;
    if (type.first_free == NO_SLOT) type.last_free = NO_SLOT;
    --type.free_count;
    return slot;
}

// A slot for a new object of the type; NO_SLOT when memory is exhausted.
std::uint32_t take_slot(std::uint32_t type_id) {
    Type& type = (*types)[type_id - 1];
    if (type.free_count >= SLOTS_IN_REST) return take_rested_slot(type);
    if (type.unused == type.unused_end && !add_chunk(type_id)) {
        return type.free_count > 0 ? take_rested_slot(type) : NO_SLOT;
    }
    return type.unused++;
}

void give_slot_back(std::uint32_t slot) {
    Type& type = (*types)[chunk_of(slot).type - 1];
    content_of(slot).next_free = NO_SLOT;
    if (type.last_free == NO_SLOT) {
        type.first_free = slot;
    } else {
        content_of(type.last_free).next_free = slot;
    }
    type.last_free = slot;
    ++type.free_count;
}

// The first live slot at or after `slot` within its chunk; NO_SLOT when there is none.
std::uint32_t live_slot_from(std::uint32_t slot) {
    const SlotChunk& chunk = chunk_of(slot);
    if (chunk.live == 0) return NO_SLOT;
    const std::uint32_t first = slot & ~(CHUNK_SLOTS - 1);
    for (std::uint32_t i = slot & (CHUNK_SLOTS - 1); i < CHUNK_SLOTS; ++i) {
        if ((chunk.states[i] & (LIVE | RELEASING)) == LIVE) return first + i;
    }
    return NO_SLOT;
}

}  // namespace
}  // namespace host

using namespace host;

std::uint32_t host_handle_type_register(const HostHandleType* type) {
    try {
        types->push_back(Type{*type, NO_SLOT, NO_SLOT, 0, 0, NO_SLOT, NO_SLOT, 0});
    } catch (const std::bad_alloc&) {
        note_memory_failure();
        return 0;
    }
    return static_cast<std::uint32_t>(types->size());
}

std::uint32_t host_handle_new(std::uint32_t type, int /*reserved1*/, int /*reserved2*/,
                              const char* source, int line, const char* description,
                              int /*flags*/) {
    if (type == 0 || type > types->size()) return 0;
    void* object = memory::allocate_zeroed((*types)[type - 1].descriptor.object_size,
                                           {source, line, description});
    if (object == nullptr) return 0;
    const std::uint32_t slot = take_slot(type);
    if (slot == NO_SLOT) {
        memory::release(object);
        note_memory_failure();
        return 0;
    }
    std::uint8_t& state = state_of(slot);
    const std::uint32_t generation = state % LAST_GENERATION + 1;
    state = static_cast<std::uint8_t>(generation | LIVE);
    content_of(slot).object = object;
    ++chunk_of(slot).live;
    return handle_of(slot);
}

void* host_handle_ptr(std::uint32_t handle) {
    return is_live(handle) ? content_of(slot_of(handle)).object : nullptr;
}

std::uint32_t host_handle_type(std::uint32_t handle) {
    return is_live(handle) ? chunk_of(slot_of(handle)).type : 0;
}

std::uint32_t host_handle_next(std::uint32_t previous, std::uint32_t type) {
    if (type == 0 || type > types->size()) return 0;
    std::uint32_t chunk = (*types)[type - 1].first_chunk;
    std::uint32_t slot = chunk << CHUNK_BITS;
    if (previous != 0) {
        slot = slot_of(previous) + 1;
        chunk = slot_of(previous) >> CHUNK_BITS;
        if (chunk >= chunk_count || chunks[chunk]->type != type) return 0;
    }
    while (chunk != NO_SLOT) {
        const std::uint32_t found = slot >> CHUNK_BITS == chunk ? live_slot_from(slot) : NO_SLOT;
        if (found != NO_SLOT) return handle_of(found);
        chunk = chunks[chunk]->next_of_type;
        slot = chunk << CHUNK_BITS;
    }
    return 0;
}

void host_handle_free(std::uint32_t handle, const char* /*source*/, int /*line*/, int /*flags*/) {
    const std::uint32_t slot = slot_of(handle);
    if (!is_live(handle) || (state_of(slot) & RELEASING) != 0) return;
    state_of(slot) = static_cast<std::uint8_t>(state_of(slot) | RELEASING);
    const auto destroy = (*types)[chunk_of(slot).type - 1].descriptor.destroy;
    if (destroy != nullptr) destroy(handle);
    memory::release(content_of(slot).object);
    state_of(slot) = static_cast<std::uint8_t>(state_of(slot) & GENERATION);
    --chunk_of(slot).live;
    give_slot_back(slot);
}
