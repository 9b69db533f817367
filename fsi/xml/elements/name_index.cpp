#include "fsi/xml/elements/name_index.h"

#include <cstddef>

#include "host/memory.h"

// One name: one of the children that have it, and how many have it. A free slot has the count 0.
struct NameSlot {
    XmlElement* member;
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

// Up to this many children are searched one by one.
constexpr std::uint32_t WALK_LIMIT = 32;
constexpr std::uint32_t FIRST_SIZE = 64;
constexpr std::uint32_t LARGEST_SIZE = std::uint32_t{1} << 30U;

NameSlot* slots_of(NameIndex& index) {
    return reinterpret_cast<NameSlot*>(&index + 1);
}

// The slot of a name, or the free slot where it belongs.
NameSlot* find_slot(NameIndex& index, const XmlName& name) {
    NameSlot* const slots = slots_of(index);
    for (std::uint32_t at = name.hash;; ++at) {
        NameSlot& slot = slots[at & (index.size - 1)];
        if (slot.count == 0 || slot.member->name == &name) return &slot;
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
        std::uint32_t at = slot.member->name->hash & (index->size - 1);
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
        const std::uint32_t wanted = slots[at].member->name->hash & mask;
        if (((at - wanted) & mask) < ((at - hole) & mask)) continue;
        slots[hole] = slots[at];
        hole = at;
    }
    slots[hole] = NameSlot{};
    --index.used;
}

SameName walk_same_name(const XmlElement& parent, const XmlName& name) {
    SameName same{};
    for (XmlElement* child = parent.first_child; child; child = child->next) {
        if (child->name == &name && same.count++ == 0) same.first = child;
    }
    return same;
}

}  // namespace

bool reserve_child_name(XmlElement& parent) {
    if (const NameIndex* const index = parent.child_names) {
        return index->used < index->size / 4 * 3 || grow(parent);
    }
    if (parent.child_count < WALK_LIMIT) return true;
    parent.child_names = new_index(FIRST_SIZE);
    if (!parent.child_names) return false;
    for (XmlElement* child = parent.first_child; child; child = child->next) {
        add_child_name(parent, *child);
    }
    return true;
}

SameName find_same_name(const XmlElement& parent, const XmlName& name) {
    if (!parent.child_names) return walk_same_name(parent, name);
    const NameSlot* const slot = find_slot(*parent.child_names, name);
    return {slot->count, slot->member};
}

void add_child_name(XmlElement& parent, XmlElement& child) {
    if (!parent.child_names) return;
    NameSlot& slot = *find_slot(*parent.child_names, *child.name);
    if (slot.count == 0) {
        slot.member = child.next_same = child.previous_same = &child;
        ++parent.child_names->used;
    } else {
        child.next_same = slot.member;
        child.previous_same = slot.member->previous_same;
        child.previous_same->next_same = &child;
        child.next_same->previous_same = &child;
    }
    ++slot.count;
}

void remove_child_name(XmlElement& parent, XmlElement& child) {
    if (!parent.child_names) return;
    NameSlot* const slot = find_slot(*parent.child_names, *child.name);
    if (--slot->count == 0) {
        free_slot(*parent.child_names, slot);
        if (parent.child_names->used == 0) drop_child_names(parent);
        return;
    }
    child.previous_same->next_same = child.next_same;
    child.next_same->previous_same = child.previous_same;
    if (slot->member == &child) slot->member = child.next_same;
}

void drop_child_names(XmlElement& parent) {
    if (parent.child_names) free_index(parent.child_names);
    parent.child_names = nullptr;
}
