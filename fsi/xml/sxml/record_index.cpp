#include "fsi/xml/sxml/record_index.h"

#include <bit>
#include <cstring>
#include <initializer_list>

#include "fsi/xml/elements/ascii_case.h"
#include "fsi/xml/elements/element.h"
#include "fsi/xml/elements/name_hash.h"
#include "fsi/xml/sxml/array_signature.h"
#include "fsi/xml/sxml/source.h"
#include "host/memory.h"

struct IndexedElement {
    std::uint32_t element;
    std::uint32_t hashes[2];  // in the two tables
    std::uint32_t next[2];    // the next one in the same slot of a table, counted from 1
};

namespace {

enum Table : unsigned { BY_NAME, BY_PARENT, TABLE_COUNT };

constexpr std::uint32_t LEAST_CAPACITY = 256;
constexpr std::uint32_t MOST_ELEMENTS = std::uint32_t{1} << 26U;

// The bytes that a hash is made of. Longer names than an item can have are never looked for.
class HashText {
  public:
    void add_name(const char* name, bool fold_case) {
        for (; *name != '\0' && used_ < XFD_ITEM_NAME_SIZE; ++name) {
            bytes_[used_++] = fold_case ? ascii_lower(*name) : *name;
        }
    }
    void add_number(std::uint32_t number) {
        std::memcpy(bytes_ + used_, &number, sizeof number);
        used_ += sizeof number;
    }
    template <typename Number>
    void add_occurrence(const Number* numbers, int count) {
        for (int i = 0; i < count; ++i) {
            if (numbers[i] > 1) add_number(static_cast<std::uint32_t>(numbers[i]));
        }
    }
    std::uint32_t hash() const {
        // Where the system put things is not known to those who write documents.
        static const char anchor = 0;
        const auto place = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(&anchor));
        const HashKey key = {place * 0x9E3779B97F4A7C15U, place * 0xC2B2AE3D27D4EB4FU + 1};
        return NameHash(key)(bytes_, used_);
    }

  private:
    std::size_t used_ = 0;
    char bytes_[XFD_ITEM_NAME_SIZE + (XML_INDEX_LIMIT + 1) * sizeof(std::uint32_t)];
};

template <typename Number>
std::uint32_t hash_by_name(const char* name, const Number* numbers, int count) {
    HashText text;
    text.add_name(name, false);
    text.add_occurrence(numbers, count);
    return text.hash();
}

template <typename Number>
std::uint32_t hash_by_parent(std::uint32_t parent, const char* name, const Number* numbers,
                             int count) {
    HashText text;
    text.add_name(name, true);
    text.add_number(parent);
    text.add_occurrence(numbers, count);
    return text.hash();
}

// The entry after `element` in document order, below and including `record`.
std::uint32_t next_in_record(std::uint32_t record, std::uint32_t handle) {
    const XmlElement* element = element_of(handle);
    if (const HostListNode* const child = first_child_node(*element)) return child->value;
    while (handle != record) {
        if (element->sibling_node->next != nullptr) return element->sibling_node->next->value;
        handle = element->parent;
        element = element_of(handle);
    }
    return 0;
}

std::uint32_t count_elements(std::uint32_t record) {
    std::uint32_t count = 0;
    for (std::uint32_t at = record; at != 0 && count < MOST_ELEMENTS;) {
        ++count;
        at = next_in_record(record, at);
    }
    return count;
}

std::uint32_t& head_of(const RecordIndex& index, Table table, std::uint32_t hash) {
    return index.heads[table * index.capacity + (hash & (index.capacity - 1))];
}

bool make_room(RecordIndex& index, std::uint32_t count) {
    if (count >= MOST_ELEMENTS) return false;
    if (count <= index.capacity) return true;
    free_record_index(index);
    const std::size_t capacity = std::bit_ceil(count < LEAST_CAPACITY ? LEAST_CAPACITY : count);
    const std::size_t size =
        capacity * (sizeof(IndexedElement) + TABLE_COUNT * sizeof *RecordIndex{}.heads);
    void* const block =
        host_alloc(size, HOST_BLOCK_RAW, SXML_SOURCE, __LINE__, "XML record index", 0);
    if (block == nullptr) return false;
    index.elements = static_cast<IndexedElement*>(block);
    index.heads = reinterpret_cast<std::uint32_t*>(index.elements + capacity);
    index.capacity = static_cast<std::uint32_t>(capacity);
    return true;
}

void add_element(RecordIndex& index, std::uint32_t number, std::uint32_t handle) {
    const XmlElement& element = *element_of(handle);
    const char* const name = xml_element_name(handle);
    const int count = element.last_index + 1;
    index.elements[number] = {handle,
                              {hash_by_name(name, element.indices, count),
                               hash_by_parent(element.parent, name, element.indices, count)},
                              {}};
}

// Links the last element first, so that every slot is in document order.
void fill_slots(RecordIndex& index, std::uint32_t count) {
    std::memset(index.heads, 0, TABLE_COUNT * std::size_t{index.capacity} * sizeof *index.heads);
    for (std::uint32_t number = count; number > 0; --number) {
        IndexedElement& indexed = index.elements[number - 1];
        for (const Table table : {BY_NAME, BY_PARENT}) {
            std::uint32_t& head = head_of(index, table, indexed.hashes[table]);
            indexed.next[table] = head;
            head = number;
        }
    }
}

const XmlHashEntry* entry_of(std::uint32_t element) {
    return static_cast<const XmlHashEntry*>(xml_get_user_data(element));
}

bool is_moved(const XmlHashEntry* entry) {
    return entry == nullptr || (entry->used & 1) != 0;
}

}  // namespace

bool make_record_index(RecordIndex& index, std::uint32_t record) {
    if (index.is_made) return true;
    if (index.is_given_up) return false;
    const std::uint32_t count = count_elements(record);
    if (!make_room(index, count)) {
        index.is_given_up = true;
        return false;
    }
    std::uint32_t handle = record;
    for (std::uint32_t number = 0; number < count; ++number) {
        add_element(index, number, handle);
        handle = next_in_record(record, handle);
    }
    fill_slots(index, count);
    index.is_made = true;
    return true;
}

// Moved elements are taken out on the way: they stay moved as long as the index lives. So elements
// that all fit one item are not passed over again and again.
FittingElements find_fitting(RecordIndex& index, const XfdItem& item) {
    FittingElements found = {0, nullptr};
    const std::uint32_t hash = hash_by_name(item.name, item.subscripts, item.dimensions());
    std::uint32_t* link = &head_of(index, BY_NAME, hash);
    while (*link != 0 && found.count < 2) {
        IndexedElement& indexed = index.elements[*link - 1];
        const XmlHashEntry* const entry = entry_of(indexed.element);
        if (is_moved(entry)) {
            *link = indexed.next[BY_NAME];
            continue;
        }
        link = &indexed.next[BY_NAME];
        if (indexed.hashes[BY_NAME] != hash || std::strcmp(entry->name, item.name) != 0) continue;
        if (!same_array_signature(indexed.element, item)) continue;
        found = {found.count + 1, entry};
    }
    return found;
}

std::uint32_t find_fitting_child(const RecordIndex& index, std::uint32_t parent,
                                 const XfdItem& item) {
    const std::uint32_t hash =
        hash_by_parent(parent, item.name, item.subscripts, item.dimensions());
    for (std::uint32_t number = head_of(index, BY_PARENT, hash); number != 0;) {
        const IndexedElement& indexed = index.elements[number - 1];
        number = indexed.next[BY_PARENT];
        if (indexed.hashes[BY_PARENT] != hash) continue;
        if (element_of(indexed.element)->parent != parent) continue;
        if (!equal_ignoring_case(xml_element_name(indexed.element), item.name)) continue;
        if (same_array_signature(indexed.element, item)) return indexed.element;
    }
    return 0;
}

void free_record_index(RecordIndex& index) {
    host_free(index.elements, SXML_SOURCE, __LINE__, 0);
    index = {};
}
