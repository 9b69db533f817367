#include "host/runtime/memory/sites.h"

#include <new>
#include <vector>

#include "host/runtime/memory/immortal.h"

namespace host::memory {

namespace {

constexpr std::uint32_t NO_SITE = 0xFFFFFFFF;
constexpr std::size_t FIRST_SLOTS = 1024;

struct SiteTable {
    std::vector<Site> sites;
    std::vector<std::uint32_t> slots;  // open addressing; twice as many as sites at least
};

constinit Immortal<SiteTable> table;

// Texts are distinguished by address: the same literal in two places makes two sites, and the
// reports add them up.
std::size_t hash_of(const Origin& origin) {
    const std::uint64_t texts = reinterpret_cast<std::uintptr_t>(origin.source) ^
                                reinterpret_cast<std::uintptr_t>(origin.description) << 7;
    const std::uint64_t hash =
        (texts + static_cast<std::uint32_t>(origin.line)) * 0x9E3779B97F4A7C15;
    return hash >> 32;
}

bool same(const Origin& a, const Origin& b) {
    return a.line == b.line && a.source == b.source && a.description == b.description;
}

void enter(std::vector<std::uint32_t>& slots, std::uint32_t number) {
    const std::size_t mask = slots.size() - 1;
    std::size_t slot = hash_of(table->sites[number].origin) & mask;
    while (slots[slot] != NO_SITE) slot = (slot + 1) & mask;
    slots[slot] = number;
}

// Makes room for one more site; throws std::bad_alloc and changes nothing when there is no memory.
void reserve_slot() {
    const std::size_t count = table->slots.size();
    if (table->sites.size() * 2 < count) return;
    std::vector<std::uint32_t> slots(count == 0 ? FIRST_SLOTS : count * 2, NO_SITE);
    for (std::uint32_t number = 0; number < table->sites.size(); ++number) enter(slots, number);
    table->slots.swap(slots);
}

bool add_site(const Origin& origin, std::uint32_t& number) {
    try {
        reserve_slot();
        table->sites.push_back(Site{origin, 0, 0, 0});
    } catch (const std::bad_alloc&) {
        return false;
    }
    number = static_cast<std::uint32_t>(table->sites.size() - 1);
    enter(table->slots, number);
    return true;
}

}  // namespace

bool find_site(const Origin& origin, std::uint32_t& number) {
    const std::size_t mask = table->slots.size() - 1;
    if (!table->slots.empty()) {
        for (std::size_t slot = hash_of(origin) & mask; table->slots[slot] != NO_SITE;
             slot = (slot + 1) & mask) {
            number = table->slots[slot];
            if (same(table->sites[number].origin, origin)) return true;
        }
    }
    return add_site(origin, number);
}

Site& site(std::uint32_t number) {
    return table->sites[number];
}

std::span<const Site> sites() {
    return table->sites;
}

}  // namespace host::memory
