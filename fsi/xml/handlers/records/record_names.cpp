#include "fsi/xml/handlers/records/record_names.h"

#include <algorithm>
#include <cstring>

#include "fsi/xml/elements/ascii_case.h"
#include "fsi/xml/elements/name_hash.h"
#include "fsi/xml/handlers/make_room.h"
#include "host/record_description.h"

namespace {

constexpr const char* DESCRIPTION = "XML record names";
constexpr std::uint32_t FIRST_SLOTS = 64;
// A file whose documents have more names than this, besides those of the description, or as many
// bytes of names, forgets them from time to time.
constexpr std::uint32_t MOST_NAMES = 4096;
constexpr std::uint32_t MOST_TEXT = 1U << 20U;

std::uint32_t hash_of(const char* text, std::size_t length) {
    return NameHash(process_hash_key())(text, length);
}

std::uint32_t& slot_of(RecordNames& names, std::uint32_t hash) {
    return names.slots[hash & (names.slot_count - 1)];
}

void link_name(RecordNames& names, std::uint32_t name) {
    std::uint32_t& slot = slot_of(names, names.names[name].hash);
    names.names[name].next = slot;
    slot = name;
}

void fill_slots(RecordNames& names) {
    std::memset(names.slots, 0, names.slot_count * sizeof *names.slots);
    for (std::uint32_t name = 1; name <= names.count; ++name) link_name(names, name);
}

bool make_slots(RecordNames& names) {
    if (names.count + 1 <= names.slot_count) return true;
    const std::uint32_t wanted = std::max(names.slot_count * 2, FIRST_SLOTS);
    if (!make_room(names.slots, names.slot_room, wanted, DESCRIPTION)) return false;
    names.slot_count = wanted;
    fill_slots(names);
    return true;
}

std::uint32_t find_name(RecordNames& names, const char* text, std::uint32_t hash) {
    if (names.slot_count == 0) return 0;
    std::uint32_t name = slot_of(names, hash);
    while (name &&
           !(names.names[name].hash == hash && std::strcmp(name_text(names, name), text) == 0)) {
        name = names.names[name].next;
    }
    return name;
}

// The name in lower case; 0 when there is none. A longer name does not belong to an item.
std::uint32_t find_folded(RecordNames& names, const char* text, std::size_t length) {
    if (length >= XFD_ITEM_NAME_SIZE) return 0;
    char folded[XFD_ITEM_NAME_SIZE];
    std::transform(text, text + length + 1, folded, ascii_lower);
    return find_name(names, folded, hash_of(folded, length));
}

// `text` does not lie among the texts.
std::uint32_t add_name(RecordNames& names, const char* text, std::size_t length) {
    const std::uint32_t hash = hash_of(text, length);
    if (const std::uint32_t found = find_name(names, text, hash)) return found;
    const std::size_t size = length + 1;
    if (!make_room(names.texts, names.text_room, names.text_size + size, DESCRIPTION) ||
        !make_room(names.names, names.name_room, std::size_t{names.count} + 2, DESCRIPTION) ||
        !make_slots(names)) {
        return 0;
    }
    const std::uint32_t number = ++names.count;
    RecordName& name = names.names[number];
    name = {};
    name.text = names.text_size;
    name.hash = hash;
    std::memcpy(names.texts + names.text_size, text, size);
    names.text_size += static_cast<std::uint32_t>(size);
    const std::uint32_t folded = find_folded(names, text, length);
    name.is_field = folded && names.names[folded].is_folded_field;
    link_name(names, number);
    return number;
}

}  // namespace

std::uint32_t add_item_name(RecordNames& names, const char* text, bool is_field) {
    if (is_field) {
        char folded[XFD_ITEM_NAME_SIZE];
        std::size_t length = 0;
        for (; text[length] && length + 1 < sizeof folded; ++length)
            folded[length] = ascii_lower(text[length]);
        folded[length] = '\0';
        const std::uint32_t field = add_name(names, folded, length);
        if (!field) return 0;
        names.names[field].is_field = names.names[field].is_folded_field = true;
    }
    return add_name(names, text, std::strlen(text));
}

void keep_item_names(RecordNames& names) {
    names.kept = names.count;
    names.kept_text = names.text_size;
}

std::uint32_t number_of_name(RecordNames& names, const char* text) {
    return add_name(names, text, std::strlen(text));
}

std::uint32_t number_of_next_name(RecordNames& names, const char* text) {
    if (names.previous) {
        for (const std::uint32_t expected : names.names[names.previous].successors) {
            if (expected && std::strcmp(name_text(names, expected), text) == 0)
                return names.previous = expected;
        }
    }
    const std::uint32_t name = number_of_name(names, text);
    if (names.previous && name) {
        std::uint32_t(&successors)[2] = names.names[names.previous].successors;
        successors[1] = successors[0];
        successors[0] = name;
    }
    names.previous = name;
    return name;
}

bool repeat_name(RecordNames& names, std::uint32_t name, const char* text) {
    if (names.names[name].stored_as != name || std::strcmp(name_text(names, name), text) != 0)
        return false;
    names.previous = name;
    return true;
}

bool limit_names(RecordNames& names) {
    const bool few = names.count - names.kept <= std::max(MOST_NAMES, names.kept);
    if (few && names.text_size - names.kept_text <= std::max(MOST_TEXT, names.kept_text))
        return false;
    names.count = names.kept;
    names.text_size = names.kept_text;
    names.previous = 0;
    // The cost of forgetting names must not depend on the record that once had the most.
    while (names.slot_count > FIRST_SLOTS && names.slot_count / 2 > names.count)
        names.slot_count /= 2;
    for (std::uint32_t number = 1; number <= names.count; ++number) {
        RecordName& name = names.names[number];
        name.stored_as = name.successors[0] = name.successors[1] = 0;
    }
    fill_slots(names);
    return true;
}

void free_names(RecordNames& names) {
    host_free(names.names, HANDLERS_SOURCE, __LINE__, 0);
    host_free(names.slots, HANDLERS_SOURCE, __LINE__, 0);
    host_free(names.texts, HANDLERS_SOURCE, __LINE__, 0);
    names = {};
}
