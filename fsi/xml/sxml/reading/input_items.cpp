#include "fsi/xml/sxml/reading/input_items.h"

#include <algorithm>
#include <initializer_list>

#include "fsi/xml/sxml/items.h"
#include "fsi/xml/sxml/plugin.h"
#include "host/memory.h"

namespace {

// Each search continues with the groups found already, so that all of them together look at every
// item about twice.
void find_enclosing(const Xfd& xfd, std::int32_t* enclosing) {
    for (std::int32_t i = 0; i < xfd.item_count; ++i) {
        std::int32_t before = i - 1;
        while (before >= 0 && xfd.items[before].level >= xfd.items[i].level) {
            before = enclosing[before];
        }
        enclosing[i] = before;
    }
}

bool are_in_same_groups(const InputItems& input, std::int32_t one, std::int32_t other) {
    while (one >= 0 && other >= 0) {
        one = input.enclosing[one];
        other = input.enclosing[other];
        const bool is_end = one < 0 || input.items[one].level <= 1;
        const bool is_other_end = other < 0 || input.items[other].level <= 1;
        if (is_end || is_other_end) return is_end && is_other_end;
        if (input.names[one] != input.names[other]) return false;
    }
    return true;
}

// What telling the places of elements apart needs to know of the names.
void describe_names(InputItems& input, std::int32_t count) {
    RecordName* const names = input.tree.names.names;
    for (std::int32_t i = 0; i < count; ++i) {
        RecordName& name = names[input.names[i]];
        const std::int32_t around = input.enclosing[i];
        name.is_group = name.is_group || is_group(input.items[i]);
        name.is_top = name.is_top || (around >= 0 && input.items[around].level <= 1);
        if (input.items[i].level <= 1) continue;
        // While names are described, `first` is the first item of a name, from 1.
        if (name.first == 0) name.first = static_cast<std::uint32_t>(i + 1);
        const auto first = static_cast<std::int32_t>(name.first - 1);
        name.is_ambiguous = name.is_ambiguous || !are_in_same_groups(input, first, i);
    }
    for (std::int32_t i = 0; i < count; ++i) names[input.names[i]].first = 0;
}

// Result: number of fields.
std::int32_t order_fields(const Xfd& xfd, std::int32_t* fields) {
    std::int32_t count = 0;
    for (std::int32_t i = 0; i < xfd.item_count; ++i) {
        const XfdItem& item = xfd.items[i];
        if (is_group(item) || item.condition < 0 || item.condition > xfd.condition_count) continue;
        fields[count++] = i;
    }
    std::sort(fields, fields + count, [&xfd](std::int32_t left, std::int32_t right) {
        const std::int16_t condition = xfd.items[left].condition;
        const std::int16_t other = xfd.items[right].condition;
        return condition != other ? condition < other : left < right;
    });
    return count;
}

bool number_names(const Xfd& xfd, RecordNames& names, std::uint32_t* numbers) {
    for (const bool groups : {false, true}) {
        for (std::int32_t i = 0; i < xfd.item_count; ++i) {
            const XfdItem& item = xfd.items[i];
            if (is_group(item) != groups) continue;
            numbers[i] = add_item_name(names, item.name, !groups);
            if (numbers[i] == 0) return false;
        }
    }
    keep_item_names(names);
    return true;
}

}  // namespace

InputItems* new_input_items(const Xfd& xfd) {
    const auto count = static_cast<std::size_t>(xfd.item_count);
    constexpr std::size_t PER_ITEM = sizeof(KnownElement) + 3 * sizeof(std::int32_t);
    void* const block = host_alloc(sizeof(InputItems) + count * PER_ITEM, HOST_BLOCK_ZEROED,
                                   SXML_SOURCE, __LINE__, "XML input items", 0);
    auto* const items = static_cast<InputItems*>(block);
    if (items == nullptr) return nullptr;
    items->known = reinterpret_cast<KnownElement*>(items + 1);
    items->enclosing = reinterpret_cast<std::int32_t*>(items->known + count);
    items->fields = items->enclosing + count;
    items->names = reinterpret_cast<std::uint32_t*>(items->fields + count);
    if (!number_names(xfd, items->tree.names, items->names)) {
        free_input_items(items);
        return nullptr;
    }
    items->items = xfd.items;
    find_enclosing(xfd, items->enclosing);
    describe_names(*items, xfd.item_count);
    items->field_count = order_fields(xfd, items->fields);
    return items;
}

void free_input_items(InputItems* items) {
    free_record_index(items->record_index);
    free_record_tree(items->tree);
    host_free(items, SXML_SOURCE, __LINE__, 0);
}
