#include "host/arrays.h"

#include <cstring>

#include "host/runtime/memory/tracked_memory.h"

namespace {

// Stands before the first item.
struct alignas(16) ArrayHeader {
    std::uint32_t item_size;
    std::uint32_t growth;
    std::uint32_t count;
    std::uint32_t capacity;
};

constexpr std::uint32_t FIRST_CAPACITY = 4;

ArrayHeader* header_of(void* array) {
    return static_cast<ArrayHeader*>(array) - 1;
}
const ArrayHeader* header_of(const void* array) {
    return static_cast<const ArrayHeader*>(array) - 1;
}
char* item_at(ArrayHeader* header, std::uint32_t index) {
    return reinterpret_cast<char*>(header + 1) + std::size_t{header->item_size} * index;
}

std::size_t block_size(std::uint32_t item_size, std::uint32_t capacity) {
    return sizeof(ArrayHeader) + std::size_t{item_size} * capacity;
}

// Room to grow to: half as much again, so that inserting stays linear, but the wished growth at
// least. 0 when the count would not fit its word.
std::uint32_t next_capacity(const ArrayHeader* header) {
    const std::uint64_t half = header->capacity / 2;
    const std::uint64_t step = half > header->growth ? half : header->growth;
    const std::uint64_t wanted = header->capacity + (step > 0 ? step : 1);
    return wanted < HOST_ARRAY_END ? static_cast<std::uint32_t>(wanted) : 0;
}

// Copies the items into a larger block; the old one stands, because the item that is about to be
// inserted may lie in it.
ArrayHeader* enlarged_copy(ArrayHeader* header, const char* source, int line) {
    const std::uint32_t capacity = next_capacity(header);
    if (capacity == 0) return nullptr;
    auto* larger = static_cast<ArrayHeader*>(
        host::memory::allocate(block_size(header->item_size, capacity),
                               {source, line, host::memory::description_of(header)}));
    if (larger == nullptr) return nullptr;
    std::memcpy(larger, header, block_size(header->item_size, header->count));
    larger->capacity = capacity;
    return larger;
}

// Opens a gap at `index` and copies the item into it. `item` may be one of the array's own.
void put_item(ArrayHeader* header, const void* item, std::uint32_t index) {
    const std::size_t size = header->item_size;
    char* gap = item_at(header, index);
    char* end = item_at(header, header->count);
    const char* from = static_cast<const char*>(item);
    const bool moves_with_gap = from >= gap && from < end;
    std::memmove(gap + size, gap, static_cast<std::size_t>(end - gap));
    std::memcpy(gap, moves_with_gap ? from + size : from, size);
    ++header->count;
}

}  // namespace

void* host_array_new(const HostArrayType* type, const char* source, int line) {
    const std::uint32_t capacity = type->growth > 0 ? type->growth : FIRST_CAPACITY;
    auto* header = static_cast<ArrayHeader*>(host::memory::allocate(
        block_size(type->item_size, capacity), {source, line, type->description}));
    if (header == nullptr) return nullptr;
    *header = ArrayHeader{type->item_size, type->growth, 0, capacity};
    return header + 1;
}

void* host_array_insert(void* array, const void* item, std::uint32_t position, const char* source,
                        int line) {
    ArrayHeader* header = header_of(array);
    const std::uint32_t index = position < header->count ? position : header->count;
    if (header->count < header->capacity) {
        put_item(header, item, index);
        return array;
    }
    ArrayHeader* larger = enlarged_copy(header, source, line);
    if (larger == nullptr) return nullptr;
    put_item(larger, item, index);
    host::memory::release(header);
    return larger + 1;
}

void* host_array_insert_at(void* array, const void* item, std::uint32_t index, const char* source,
                           int line) {
    return host_array_insert(array, item, index, source, line);
}

void host_array_delete(void* array, std::uint32_t index, std::uint32_t count) {
    if (array == nullptr || index >= header_of(array)->count) return;
    ArrayHeader* header = header_of(array);
    const std::uint32_t left = header->count - index;
    const std::uint32_t removed = count < left ? count : left;
    std::memmove(item_at(header, index), item_at(header, index + removed),
                 std::size_t{header->item_size} * (left - removed));
    header->count -= removed;
}

std::uint32_t host_array_count(const void* array) {
    return array == nullptr ? 0 : header_of(array)->count;
}

void host_array_free(void* array, const char* /*source*/, int /*line*/) {
    if (array != nullptr) host::memory::release(header_of(array));
}
