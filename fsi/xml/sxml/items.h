// Walking the items of a record description, and its conditions.
// Descriptions come from the host; numbers in them that lead nowhere (a condition or an item out of
// range) count as "no such condition" and "no such item".
#pragma once

#include <cstdint>

#include "fsi/xml/sxml/group_path.h"
#include "host/record_description.h"

constexpr std::int16_t RECORD_LEVEL = 1;

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

// The item to write for `index`: a group that has variants is written as the item of the first
// condition that starts at the same place. When that item's own element is still open, writing it
// again would never come to an end, and the group stands for itself.
std::int32_t written_item(const Xfd& xfd, std::int32_t index, const GroupPath& path);

// Bytes from which on a record has a place for the item, as an unsigned number whatever the
// description says: for a group its offset, for a field its end.
std::uint32_t extent_of(const XfdItem& item);

// Number of leading items among which record layouts are looked for.
std::int32_t layout_scan_count(const Xfd& xfd);

// Has the host evaluate every condition against the record.
void test_all_conditions(Xfd& xfd, const void* record);

// Result of the last evaluation of condition `number`, from 1.
bool condition_holds(const Xfd& xfd, int number);

// Index of the record-level item that opens the layout of the record that the conditions were last
// evaluated against.
std::int32_t choose_layout(const Xfd& xfd);
