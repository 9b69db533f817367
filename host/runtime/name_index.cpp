// Records in the order they came, and a table of chains over them: clearing costs the records, not
// the room, and the room is used again.
#include "host/name_index.h"

#include <cstring>

#include "host/runtime/memory/tracked_memory.h"
#include "host/runtime/name_index.h"
#include "host/runtime/text/text_hash.h"

namespace {

constexpr std::uint32_t NO_ENTRY = 0xFFFFFFFF;
constexpr std::uint32_t FIRST_CAPACITY = 8;
constexpr std::uint32_t LARGEST_CAPACITY = 1U << 31;

struct Entry {
    void* record;
    std::uint32_t hash;
    std::uint32_t next;  // in the chain
};

}  // namespace

struct HostNameIndex {
    HostNameIndexType type;
    Entry* entries;
    std::uint32_t* chains;  // as many as there is room for entries, a power of two
    std::uint32_t count;
    std::uint32_t capacity;
};

namespace {

const char* key_of(const HostNameIndex* index, const void* record) {
    const char* key = nullptr;
    std::memcpy(&key, static_cast<const char*>(record) + index->type.key_offset, sizeof key);
    return key;
}

std::uint32_t hash_key(const char* key) {
    return static_cast<std::uint32_t>(host::hash_text(key, std::strlen(key)));
}

const Entry* find_entry(const HostNameIndex* index, const char* key, std::uint32_t hash) {
    if (index->count == 0) return nullptr;
    for (std::uint32_t i = index->chains[hash & (index->capacity - 1)]; i != NO_ENTRY;
         i = index->entries[i].next) {
        const Entry& entry = index->entries[i];
        if (entry.hash == hash && std::strcmp(key_of(index, entry.record), key) == 0) {
            return &entry;
        }
    }
    return nullptr;
}

void link(HostNameIndex* index, std::uint32_t number) {
    Entry& entry = index->entries[number];
    std::uint32_t& chain = index->chains[entry.hash & (index->capacity - 1)];
    entry.next = chain;
    chain = number;
}

// Doubles the room. A record whose key was there before it is in no chain: it is never looked for,
// and any number of them must not make the chains long. Returns false, with nothing changed, when
// memory is exhausted.
bool enlarge(HostNameIndex* index, const char* source, int line) {
    if (index->capacity == LARGEST_CAPACITY) return false;
    const std::uint32_t capacity = index->capacity == 0 ? FIRST_CAPACITY : index->capacity * 2;
    const host::memory::Origin origin{source, line, index->type.description};
    auto* entries =
        static_cast<Entry*>(host::memory::allocate(std::size_t{capacity} * sizeof(Entry), origin));
    if (entries == nullptr) return false;
    auto* chains = static_cast<std::uint32_t*>(
        host::memory::allocate(std::size_t{capacity} * sizeof(std::uint32_t), origin));
    if (chains == nullptr) {
        host::memory::release(entries);
        return false;
    }
    std::memset(chains, 0xFF, std::size_t{capacity} * sizeof(std::uint32_t));
    if (index->count > 0) std::memcpy(entries, index->entries, index->count * sizeof(Entry));

    Entry* old_entries = index->entries;
    std::uint32_t* old_chains = index->chains;
    for (std::uint32_t old = 0; old < index->capacity; ++old) {
        for (std::uint32_t i = old_chains[old]; i != NO_ENTRY; i = old_entries[i].next) {
            std::uint32_t& chain = chains[entries[i].hash & (capacity - 1)];
            entries[i].next = chain;
            chain = i;
        }
    }
    index->entries = entries;
    index->chains = chains;
    index->capacity = capacity;
    host::memory::release(old_entries);
    host::memory::release(old_chains);
    return true;
}

}  // namespace

HostNameIndex* host_hash_new(const HostNameIndexType* type, const char* source, int line,
                             int /*flags*/) {
    auto* index = static_cast<HostNameIndex*>(
        host::memory::allocate_zeroed(sizeof(HostNameIndex), {source, line, type->description}));
    if (index != nullptr) index->type = *type;
    return index;
}

int host_hash_insert(HostNameIndex* index, void* record, const char* source, int line,
                     int /*flags*/) {
    if (index->count == index->capacity && !enlarge(index, source, line)) return 0;
    const char* key = key_of(index, record);
    const std::uint32_t hash = hash_key(key);
    const bool is_first = find_entry(index, key, hash) == nullptr;
    const std::uint32_t number = index->count++;
    index->entries[number] = Entry{record, hash, NO_ENTRY};
    if (is_first) link(index, number);
    return 1;
}

void* host_hash_find(const HostNameIndex* index, const char* key) {
    if (index == nullptr || key == nullptr) return nullptr;
    const Entry* entry = find_entry(index, key, hash_key(key));
    return entry != nullptr ? entry->record : nullptr;
}

void host_hash_clear(HostNameIndex* index, const char* /*source*/, int /*line*/, int /*flags*/) {
    if (index == nullptr) return;
    const std::uint32_t count = index->count;
    index->count = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        index->chains[index->entries[i].hash & (index->capacity - 1)] = NO_ENTRY;
    }
    if (index->type.release == nullptr) return;
    for (std::uint32_t i = 0; i < count; ++i) index->type.release(index->entries[i].record);
}

void host_hash_free(HostNameIndex* index, const char* source, int line, int flags) {
    if (index == nullptr) return;
    host_hash_clear(index, source, line, flags);
    host::memory::release(index->entries);
    host::memory::release(index->chains);
    host::memory::release(index);
}

namespace host {

std::size_t index_count(const HostNameIndex* index) {
    return index->count;
}

void* index_record(const HostNameIndex* index, std::size_t number) {
    return number < index->count ? index->entries[number].record : nullptr;
}

}  // namespace host
