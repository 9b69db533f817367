// Walking the items of a record description, and its conditions.
// Descriptions come from the host; numbers in them that lead nowhere (a condition or an item out of
// range) count as "no such condition" and "no such item".
#pragma once

#include <cstdint>

#include "host/record_description.h"

inline bool is_group(const XfdItem& item) {
    return item.condition == XFD_GROUP;
}

// True when the item stands for the first occurrence of its innermost dimension, or for no array.
bool is_first_of_innermost(const XfdItem& item);

// Index of the first item below a group; -1 when there is none or the item is a field.
std::int32_t first_child_item(const Xfd& xfd, std::int32_t index);

// Index of the next item of the same level under the same group; -1 after the last. Without
// `every_occurrence` an array is visited at its first occurrence only.
std::int32_t next_sibling_item(const Xfd& xfd, std::int32_t index, bool every_occurrence);

// Number of leading items among which record layouts are looked for.
std::int32_t layout_scan_count(const Xfd& xfd);

// Has the host evaluate every condition against the record.
void test_all_conditions(Xfd& xfd, const void* record);

// Result of the last evaluation of condition `number`, from 1.
bool condition_holds(const Xfd& xfd, int number);

// Index of the record-level item that opens the layout of the record that the conditions were last
// evaluated against.
std::int32_t choose_layout(const Xfd& xfd);
