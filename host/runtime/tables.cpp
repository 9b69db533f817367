// A name table is a name index over entries that carry their names.
#include "host/tables.h"

#include <cstddef>
#include <cstring>

#include "host/name_index.h"
#include "host/runtime/memory/tracked_memory.h"
#include "host/runtime/name_index.h"

struct HostTable {
    HostNameIndex* index;
};

namespace {

constexpr std::size_t LONGEST_NAME = 255;

struct TableEntry {
    const char* name;  // stands after the entry
    void* value;
};

// A name as it is stored: cut to the longest that is kept.
struct StoredName {
    explicit StoredName(const char* name) {
        const std::size_t length = strnlen(name, LONGEST_NAME);
        std::memcpy(text, name, length);
        text[length] = '\0';
    }
    char text[LONGEST_NAME + 1];
};

void release_entry(void* record) {
    host::memory::release(static_cast<TableEntry*>(record)->value);
    host::memory::release(record);
}

HostTable* new_table(const host::memory::Origin& origin) {
    auto* table = static_cast<HostTable*>(host::memory::allocate_zeroed(sizeof(HostTable), origin));
    if (table == nullptr) return nullptr;
    const HostNameIndexType type{
        HOST_KEY_STRING, {}, release_entry, origin.description, offsetof(TableEntry, name)};
    table->index = host_hash_new(&type, origin.source, origin.line, 0);
    if (table->index != nullptr) return table;
    host::memory::release(table);
    return nullptr;
}

bool add_entry(HostTable* table, const StoredName& name, void* value,
               const host::memory::Origin& origin) {
    const std::size_t size = std::strlen(name.text) + 1;
    auto* entry =
        static_cast<TableEntry*>(host::memory::allocate(sizeof(TableEntry) + size, origin));
    if (entry == nullptr) return false;
    char* own_name = reinterpret_cast<char*>(entry + 1);
    std::memcpy(own_name, name.text, size);
    *entry = TableEntry{own_name, value};
    if (host_hash_insert(table->index, entry, origin.source, origin.line, 0) != 0) return true;
    host::memory::release(entry);
    return false;
}

TableEntry* find_entry(const HostTable* table, const StoredName& name) {
    return static_cast<TableEntry*>(host_hash_find(table->index, name.text));
}

}  // namespace

HostTable* host_table_put(HostTable* table, const char* name, void* value, const char* source,
                          int line, const char* description, int /*flags*/) {
    const host::memory::Origin origin{source, line, description};
    const StoredName stored(name);
    HostTable* target = table != nullptr ? table : new_table(origin);
    if (target == nullptr) return nullptr;
    if (TableEntry* entry = find_entry(target, stored); entry != nullptr) {
        if (entry->value != value) host::memory::release(entry->value);
        entry->value = value;
        return target;
    }
    if (add_entry(target, stored, value, origin)) return target;
    if (table == nullptr) host_table_free(target, source, line);
    return nullptr;
}

void* host_table_get(const HostTable* table, const char* name) {
    if (table == nullptr || name == nullptr) return nullptr;
    const TableEntry* entry = find_entry(table, StoredName(name));
    return entry != nullptr ? entry->value : nullptr;
}

std::size_t host_table_count(const HostTable* table) {
    return table != nullptr ? host::index_count(table->index) : 0;
}

const char* host_table_name(const HostTable* table, std::size_t index) {
    if (table == nullptr) return nullptr;
    const auto* entry = static_cast<const TableEntry*>(host::index_record(table->index, index));
    return entry != nullptr ? entry->name : nullptr;
}

void host_table_free(HostTable* table, const char* source, int line) {
    if (table == nullptr) return;
    host_hash_free(table->index, source, line, 0);
    host::memory::release(table);
}
