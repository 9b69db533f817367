#include "fsi/xml/sxml/reading/record_index.h"

#include <bit>
#include <cstring>
#include <initializer_list>

#include "fsi/xml/elements/ascii_case.h"
#include "fsi/xml/elements/name_hash.h"
#include "fsi/xml/sxml/plugin.h"
#include "fsi/xml/sxml/reading/array_signature.h"
#include "host/memory.h"
#include "sxml/xml_api.h"

struct IndexedElement {
    std::uint32_t hashes[2];  // in the two tables
    std::uint32_t next[2];    // the next one in the same slot of a table
};

namespace {

enum Table : unsigned { BY_NAME, BY_PARENT, TABLE_COUNT };

constexpr std::uint32_t LEAST_CAPACITY = 256;
constexpr std::uint32_t MOST_ELEMENTS = std::uint32_t{1} << 26U;

// The bytes that a hash is made of. Longer names than an item can have are never looked for.
class HashText {
  public:
    void add_folded(const char* name) {
        for (; *name != '\0' && used_ < XFD_ITEM_NAME_SIZE; ++name) {
            bytes_[used_++] = ascii_lower(*name);
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
    std::uint32_t hash() const { return NameHash(process_hash_key())(bytes_, used_); }

  private:
    std::size_t used_ = 0;
    char bytes_[XFD_ITEM_NAME_SIZE + (XML_INDEX_LIMIT + 1) * sizeof(std::uint32_t)];
};

template <typename Number>
std::uint32_t hash_by_name(std::uint32_t name, const Number* numbers, int count) {
    HashText text;
    text.add_number(name);
    text.add_occurrence(numbers, count);
    return text.hash();
}

template <typename Number>
std::uint32_t hash_by_parent(std::uint32_t parent, const char* name, const Number* numbers,
                             int count) {
    HashText text;
    text.add_folded(name);
    text.add_number(parent);
    text.add_occurrence(numbers, count);
    return text.hash();
}

std::uint32_t& head_of(const RecordIndex& index, Table table, std::uint32_t hash) {
    return index.heads[table * index.slot_count + (hash & (index.slot_count - 1))];
}

bool make_room(RecordIndex& index, std::uint32_t count) {
    if (count >= MOST_ELEMENTS) return false;
    const std::size_t capacity = std::bit_ceil(count < LEAST_CAPACITY ? LEAST_CAPACITY : count);
    if (count <= index.capacity) {
        index.slot_count = static_cast<std::uint32_t>(capacity);
        return true;
    }
    free_record_index(index);
    const std::size_t size =
        capacity * (sizeof(IndexedElement) + TABLE_COUNT * sizeof *RecordIndex{}.heads);
    void* const block =
        host_alloc(size, HOST_BLOCK_RAW, SXML_SOURCE, __LINE__, "XML record index", 0);
    if (block == nullptr) return false;
    index.elements = static_cast<IndexedElement*>(block);
    index.heads = reinterpret_cast<std::uint32_t*>(index.elements + capacity);
    index.capacity = index.slot_count = static_cast<std::uint32_t>(capacity);
    return true;
}

void add_element(RecordIndex& index, const RecordTree& tree, std::uint32_t number) {
    const RecordElement& element = tree.elements[number];
    std::uint32_t numbers[XML_INDEX_LIMIT];
    const int count = occurrence_numbers(tree, number, numbers);
    const char* const name = name_text(tree.names, element.name);
    index.elements[number] = {{hash_by_name(element.name, numbers, count),
                               hash_by_parent(element.parent, name, numbers, count)},
                              {}};
}

// Links the last element first, so that every slot is in document order.
void fill_slots(RecordIndex& index, std::uint32_t count) {
    std::memset(index.heads, 0, TABLE_COUNT * std::size_t{index.slot_count} * sizeof *index.heads);
    for (std::uint32_t number = count; number > 0; --number) {
        IndexedElement& indexed = index.elements[number];
        for (const Table table : {BY_NAME, BY_PARENT}) {
            std::uint32_t& head = head_of(index, table, indexed.hashes[table]);
            indexed.next[table] = head;
            head = number;
        }
    }
}

}  // namespace

bool make_record_index(RecordIndex& index, const RecordTree& tree) {
    if (index.is_made) return true;
    if (index.is_given_up) return false;
    if (!make_room(index, tree.last_element + 1)) {
        index.is_given_up = true;
        return false;
    }
    for (std::uint32_t number = 1; number <= tree.last_element; ++number) {
        add_element(index, tree, number);
    }
    fill_slots(index, tree.last_element);
    index.is_made = true;
    return true;
}

// Moved elements are taken out on the way: they stay moved as long as the index lives. So elements
// that all fit one item are not skipped repeatedly.
FittingElements find_fitting(InputItems& input, std::uint32_t name, const XfdItem& item) {
    RecordIndex& index = input.record_index;
    const RecordTree& tree = input.tree;
    FittingElements found = {0, 0};
    const std::uint32_t hash = hash_by_name(name, item.subscripts, item.dimensions());
    std::uint32_t* link = &head_of(index, BY_NAME, hash);
    while (*link != 0 && found.count < 2) {
        const std::uint32_t number = *link;
        IndexedElement& indexed = index.elements[number];
        const RecordElement& element = tree.elements[number];
        if (element.is_moved) {
            *link = indexed.next[BY_NAME];
            continue;
        }
        link = &indexed.next[BY_NAME];
        if (indexed.hashes[BY_NAME] != hash || element.name != name) continue;
        if (!same_array_signature(input, number, item)) continue;
        found = {found.count + 1, number};
    }
    return found;
}

std::uint32_t find_fitting_child(const InputItems& input, std::uint32_t parent,
                                 const XfdItem& item) {
    const RecordIndex& index = input.record_index;
    const RecordTree& tree = input.tree;
    const std::uint32_t hash =
        hash_by_parent(parent, item.name, item.subscripts, item.dimensions());
    for (std::uint32_t number = head_of(index, BY_PARENT, hash); number != 0;
         number = index.elements[number].next[BY_PARENT]) {
        const RecordElement& element = tree.elements[number];
        if (index.elements[number].hashes[BY_PARENT] != hash || element.parent != parent) continue;
        if (!equal_ignoring_case(name_text(tree.names, element.name), item.name)) continue;
        if (same_array_signature(input, number, item)) return number;
    }
    return 0;
}

void free_record_index(RecordIndex& index) {
    host_free(index.elements, SXML_SOURCE, __LINE__, 0);
    index = {};
}
