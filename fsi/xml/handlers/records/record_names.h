// The names of a file's elements as numbers, so that the elements of a record and the items of the
// description are compared without looking at texts. The names of the items come first and stay;
// those that only documents have are forgotten when they become too many.
#pragma once

#include <cstddef>
#include <cstdint>

// What is known of a name, numbered from 1.
struct RecordName {
    std::uint32_t text;  // where it lies among the texts
    std::uint32_t hash;
    std::uint32_t next;       // the next name in the same slot; 0 after the last
    std::uint32_t stored_as;  // the name that an element written so is stored under; 0: not known
    std::uint32_t successors[2];  // the names that followed it recently, latest first; 0: not known
    bool is_field;                // equal to the name of a field except for case
    bool is_folded_field;         // the name of a field in lower case
    bool is_group;                // the name of a group
    bool is_top;                  // the name of an item directly below a record
    bool is_ambiguous;            // the name of items in groups that are called differently

    // The elements of this name in record number `record`; invalid for other records.
    std::uint64_t record;
    std::uint32_t first;
    std::uint32_t last;
    std::uint32_t sibling;  // the one last started below the element that is open now; or another
};

// Zero-filled, it is ready for use.
struct RecordNames {
    RecordName* names;  // names[0] is not used
    std::uint32_t* slots;
    char* texts;
    std::uint32_t name_room;
    std::uint32_t slot_count;  // in use: a power of two, or 0
    std::uint32_t slot_room;
    std::uint32_t text_room;
    std::uint32_t count;
    std::uint32_t text_size;
    std::uint32_t previous;  // written last; 0: none
    std::uint32_t kept;      // names and bytes of text that are never forgotten
    std::uint32_t kept_text;
};

// The text of a name, as long as no name is added.
inline const char* name_text(const RecordNames& names, std::uint32_t name) {
    return names.texts + names.names[name].text;
}

// The name of an item. `is_field`: elements of this name, in whatever case, hold data. Called for
// all fields before it is called for groups. 0 when memory is exhausted.
std::uint32_t add_item_name(RecordNames& names, const char* text, bool is_field);

// The items' names are complete: they are kept.
void keep_item_names(RecordNames& names);

// The number of a NUL-terminated name, which is added when it is new. 0 when memory is exhausted.
std::uint32_t number_of_name(RecordNames& names, const char* text);

// The same for the name of the next start tag, which is expected to follow the one before as it did
// the last time.
std::uint32_t number_of_next_name(RecordNames& names, const char* text);

// The same, when `name` is a name that is stored as it is written, and `text` is that one. False,
// with nothing changed, when it is not.
bool repeat_name(RecordNames& names, std::uint32_t name, const char* text);

// Forgets names when there are too many. Result: whether it did; then no number of a name that is
// not an item's is valid any longer.
bool limit_names(RecordNames& names);

void free_names(RecordNames& names);
