// The elements of one record, found by name and occurrence numbers.
//
// Elements of one name are chained, and so are the children of an element. Walking those chains is
// fast as long as they are short; a record with a large table has long ones, and every item of the
// table would walk them again. For such a record this index is made, once and of all its elements.
// It tells apart what may fit an item from what certainly does not: an element whose numbers,
// without those that are 1, are not the item's subscripts without those that are 1, fits the item
// under no setting.
#pragma once

#include <cstdint>

#include "fsi/xml/handlers/records/record_tree.h"
#include "host/record_description.h"

struct IndexedElement;
struct InputItems;

// Zero-filled, it is ready for use.
struct RecordIndex {
    IndexedElement* elements;  // in document order, without the number 0
    std::uint32_t* heads;      // two hash tables of element numbers, 0 for none
    std::uint32_t capacity;    // of `elements`; each hash table has room for as many slots
    std::uint32_t slot_count;  // in use for this record, a power of two: clearing the slots must
                               // not take longer because there was a larger record before
    bool is_made;
    bool is_given_up;  // there was no room for it: this record is walked
};

// The record is about to change. The room is kept for the next one.
inline void forget_record(RecordIndex& index) {
    index.is_made = false;
    index.is_given_up = false;
}

// Makes the index of the record's elements, which have their occurrence numbers, unless it is made
// already. False when memory is exhausted.
bool make_record_index(RecordIndex& index, const RecordTree& tree);

// Up to two elements of the item's name (whose number is `name`) that are not moved and fit the
// item.
struct FittingElements {
    int count;          // 2: two or more
    std::uint32_t any;  // the only one when there is one
};
FittingElements find_fitting(InputItems& input, std::uint32_t name, const XfdItem& item);

// The first child of `parent` that has the item's name, without regard to case, and fits the item;
// 0 when there is none.
std::uint32_t find_fitting_child(const InputItems& input, std::uint32_t parent,
                                 const XfdItem& item);

void free_record_index(RecordIndex& index);
