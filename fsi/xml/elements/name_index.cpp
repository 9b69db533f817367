#include "fsi/xml/elements/name_index.h"

#include <algorithm>
#include <cstddef>

#include "fsi/xml/elements/name_hash.h"
#include "host/memory.h"
#include "host/strings.h"

// One name: its hash, one of the children that have it, and how many have it. A free slot has the
// count 0.
struct NameSlot {
    std::uint32_t hash;
    std::uint32_t member;
    std::uint32_t count;
};

// The slots follow it. Collisions go to the next free slot; `size` is a power of two, and never
// more than three quarters of the slots are in use.
struct NameIndex {
    std::uint32_t size;
    std::uint32_t used;
};
static_assert(sizeof(NameIndex) % alignof(NameSlot) == 0);

namespace {

// Up to so many children the list is walked.
constexpr std::uint64_t WALK_LIMIT = 8;
constexpr std::uint32_t FIRST_SIZE = 16;
constexpr std::uint32_t LARGEST_SIZE = std::uint32_t{1} << 30U;

NameSlot* slots_of(NameIndex& index) {
    return reinterpret_cast<NameSlot*>(&index + 1);
}

std::uint32_t hash_of(const XmlElement& element) {
    return NameHash(process_hash_key())(host_string_text(element.name),
                                        host_string_length(element.name));
}

bool same_name(const XmlElement& element, std::uint32_t other) {
    return host_string_compare(element.name, element_of(other)->name) == 0;
}

// The slot of a child's name, or the free slot where it belongs.
NameSlot* find_slot(NameIndex& index, std::uint32_t hash, const XmlElement& child) {
    NameSlot* const slots = slots_of(index);
    for (std::uint32_t at = hash;; ++at) {
        NameSlot& slot = slots[at & (index.size - 1)];
        if (slot.count == 0 || (slot.hash == hash && same_name(child, slot.member))) return &slot;
    }
}

NameIndex* new_index(std::uint32_t size) {
    void* const block =
        host_alloc(sizeof(NameIndex) + std::size_t{size} * sizeof(NameSlot), HOST_BLOCK_ZEROED,
                   ELEMENTS_SOURCE, __LINE__, "XML children names", 0);
    auto* const index = static_cast<NameIndex*>(block);
    if (index) index->size = size;
    return index;
}

void free_index(NameIndex* index) {
    host_free(index, ELEMENTS_SOURCE, __LINE__, 0);
}

// Moves the slots to a table of twice the size.
bool grow(XmlElement& parent) {
    NameIndex& old = *parent.child_names;
    NameIndex* const index = old.size < LARGEST_SIZE ? new_index(old.size * 2) : nullptr;
    if (!index) return false;
    for (std::uint32_t i = 0; i < old.size; ++i) {
        const NameSlot& slot = slots_of(old)[i];
        if (slot.count == 0) continue;
        std::uint32_t at = slot.hash & (index->size - 1);
        while (slots_of(*index)[at].count != 0) at = (at + 1) & (index->size - 1);
        slots_of(*index)[at] = slot;
    }
    index->used = old.used;
    free_index(&old);
    parent.child_names = index;
    return true;
}

// Frees a slot and moves those up that had to give way to it, so that no search ends too early.
void free_slot(NameIndex& index, NameSlot* freed) {
    NameSlot* const slots = slots_of(index);
    const std::uint32_t mask = index.size - 1;
    auto hole = static_cast<std::uint32_t>(freed - slots);
    for (std::uint32_t at = (hole + 1) & mask; slots[at].count != 0; at = (at + 1) & mask) {
        const std::uint32_t wanted = slots[at].hash & mask;
        if (((at - wanted) & mask) < ((at - hole) & mask)) continue;
        slots[hole] = slots[at];
        hole = at;
    }
    slots[hole] = NameSlot{};
    --index.used;
}

SameName walk_same_name(const XmlElement& parent, const XmlElement& child) {
    SameName same{};
    for (const HostListNode* node = first_child_node(parent); node; node = node->next) {
        if (!same_name(child, node->value)) continue;
        if (same.count++ == 0) same.first = node->value;
    }
    return same;
}

}  // namespace

bool reserve_child_name(XmlElement& parent) {
    if (const NameIndex* const index = parent.child_names) {
        return index->used < index->size / 4 * 3 || grow(parent);
    }
    if (!parent.children || parent.children->count < WALK_LIMIT) return true;
    parent.child_names = new_index(FIRST_SIZE);
    if (!parent.child_names) return false;
    for (const HostListNode* node = parent.children->first; node; node = node->next) {
        add_child_name(parent, node->value, *element_of(node->value));
    }
    return true;
}

SameName find_same_name(const XmlElement& parent, const XmlElement& child) {
    if (!parent.child_names) return walk_same_name(parent, child);
    const NameSlot* const slot = find_slot(*parent.child_names, hash_of(child), child);
    return {slot->count, slot->member};
}

void add_child_name(XmlElement& parent, std::uint32_t handle, XmlElement& child) {
    if (!parent.child_names) return;
    const std::uint32_t hash = hash_of(child);
    NameSlot& slot = *find_slot(*parent.child_names, hash, child);
    if (slot.count == 0) {
        slot = {hash, handle, 0};
        child.next_same = child.previous_same = handle;
        ++parent.child_names->used;
    } else {
        XmlElement& member = *element_of(slot.member);
        XmlElement& last = *element_of(member.previous_same);
        child.next_same = slot.member;
        child.previous_same = member.previous_same;
        last.next_same = handle;
        member.previous_same = handle;
    }
    ++slot.count;
}

void remove_child_name(XmlElement& parent, std::uint32_t handle, XmlElement& child) {
    if (!parent.child_names) return;
    NameSlot* const slot = find_slot(*parent.child_names, hash_of(child), child);
    if (--slot->count == 0) {
        free_slot(*parent.child_names, slot);
        if (parent.child_names->used == 0) drop_child_names(parent);
        return;
    }
    element_of(child.previous_same)->next_same = child.next_same;
    element_of(child.next_same)->previous_same = child.previous_same;
    if (slot->member == handle) slot->member = child.next_same;
}

void drop_child_names(XmlElement& parent) {
    free_index(parent.child_names);
    parent.child_names = nullptr;
}
