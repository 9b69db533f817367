#include "fsi/xml/elements/interned_names.h"

#include <cstddef>
#include <cstring>

#include "fsi/xml/elements/element.h"
#include "fsi/xml/elements/name_hash.h"
#include "host/memory.h"

namespace {

constexpr std::uint32_t FIRST_SIZE = 64;
constexpr std::uint32_t LARGEST_SIZE = std::uint32_t{1} << 30U;

// All names in use, in chains of one hash each; `size` is a power of two. Without names there are
// no chains either, so that nothing is left when the last element goes.
struct NameTable {
    XmlName** chains;
    std::uint32_t size;
    std::uint32_t count;
};

NameTable table{};

XmlName*& chain_of(std::uint32_t hash) {
    return table.chains[hash & (table.size - 1)];
}

void free_empty_table() {
    if (table.count > 0) return;
    host_free(table.chains, ELEMENTS_SOURCE, __LINE__, 0);
    table = {};
}

// Makes room for one name more, one a chain on average.
bool reserve_name() {
    if (table.count < table.size) return true;
    if (table.size >= LARGEST_SIZE) return false;
    const NameTable old = table;
    const std::uint32_t size = old.size > 0 ? old.size * 2 : FIRST_SIZE;
    void* const block = host_alloc(size * sizeof(void*), HOST_BLOCK_ZEROED, ELEMENTS_SOURCE,
                                   __LINE__, "XML element names", 0);
    if (!block) return false;
    table = {static_cast<XmlName**>(block), size, old.count};
    for (std::uint32_t i = 0; i < old.size; ++i) {
        for (XmlName* name = old.chains[i]; name;) {
            XmlName* const next = name->next;
            name->next = chain_of(name->hash);
            chain_of(name->hash) = name;
            name = next;
        }
    }
    host_free(old.chains, ELEMENTS_SOURCE, __LINE__, 0);
    return true;
}

XmlName* add_name(std::string_view text, std::uint32_t hash) {
    if (text.size() > UINT32_MAX - 1 || !reserve_name()) return nullptr;
    auto* const name =
        static_cast<XmlName*>(host_alloc(sizeof(XmlName) + text.size() + 1, HOST_BLOCK_RAW,
                                         ELEMENTS_SOURCE, __LINE__, "XML element name", 0));
    if (!name) {
        free_empty_table();
        return nullptr;
    }
    *name = {chain_of(hash), 1, hash, static_cast<std::uint32_t>(text.size())};
    char* const stored = reinterpret_cast<char*>(name + 1);
    if (!text.empty()) std::memcpy(stored, text.data(), text.size());
    stored[text.size()] = '\0';
    chain_of(hash) = name;
    ++table.count;
    return name;
}

}  // namespace

XmlName* use_name(std::string_view text) {
    const std::uint32_t hash = NameHash(process_hash_key())(text.data(), text.size());
    for (XmlName* name = table.size > 0 ? chain_of(hash) : nullptr; name; name = name->next) {
        if (name->hash != hash || view_of(*name) != text) continue;
        ++name->uses;
        return name;
    }
    return add_name(text, hash);
}

void drop_name(XmlName*& name) {
    XmlName* const dropped = name;
    name = nullptr;
    if (!dropped || --dropped->uses > 0) return;
    XmlName** link = &chain_of(dropped->hash);
    while (*link != dropped) link = &(*link)->next;
    *link = dropped->next;
    host_free(dropped, ELEMENTS_SOURCE, __LINE__, 0);
    --table.count;
    free_empty_table();
}
