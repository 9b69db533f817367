#include "fsi/xml/sxml/items.h"

#include <algorithm>

#include "fsi/xml/sxml/host_functions.h"

namespace {

bool is_first_of_all(const XfdItem& item) {
    const std::int16_t* const subscripts = item.subscripts;
    return std::all_of(subscripts, subscripts + item.dimensions(),
                       [](std::int16_t subscript) { return subscript <= 1; });
}

bool disqualifies(const Xfd& xfd, const XfdItem& item) {
    return item.condition != 0 && !is_group(item) && !condition_holds(xfd, item.condition);
}

}  // namespace

bool is_first_of_innermost(const XfdItem& item) {
    const int dimensions = item.dimensions();
    return dimensions == 0 || item.subscripts[dimensions - 1] == 1;
}

std::int32_t first_child_item(const Xfd& xfd, std::int32_t index) {
    const XfdItem& group = xfd.items[index];
    if (!is_group(group)) return -1;
    for (std::int32_t i = index + 1; i < xfd.item_count; ++i) {
        if (xfd.items[i].level > group.level) return i;
    }
    return -1;
}

std::int32_t next_sibling_item(const Xfd& xfd, std::int32_t index, bool every_occurrence) {
    const std::int16_t level = xfd.items[index].level;
    for (std::int32_t i = index + 1; i < xfd.item_count; ++i) {
        const XfdItem& item = xfd.items[i];
        if (item.level < level) return -1;
        if (item.level == level && (every_occurrence || is_first_of_all(item))) return i;
    }
    return -1;
}

std::int32_t written_item(const Xfd& xfd, std::int32_t index, const GroupPath& path) {
    const XfdItem& item = xfd.items[index];
    if (!is_group(item) || (xfd.flags & XFD_SEVERAL_LAYOUTS) == 0 || item.level < 2) return index;
    for (int i = 0; i < xfd.condition_count; ++i) {
        const std::int32_t variant = xfd.conditions[i].item;
        if (variant < 0 || variant >= xfd.item_count) continue;
        if (xfd.items[variant].offset == item.offset) {
            return path.contains(variant) ? index : variant;
        }
    }
    return index;
}

std::uint32_t extent_of(const XfdItem& item) {
    const auto offset = static_cast<std::uint32_t>(item.offset);
    return is_group(item) ? offset : offset + static_cast<std::uint32_t>(item.data.length);
}

std::int32_t layout_scan_count(const Xfd& xfd) {
    return std::min(xfd.record_scan_count, xfd.item_count);
}

void test_all_conditions(Xfd& xfd, const void* record) {
    for (int number = 1; number <= xfd.condition_count; ++number) {
        host_functions::test_condition()(&xfd, number, record);
    }
}

bool condition_holds(const Xfd& xfd, int number) {
    if (number < 1 || number > xfd.condition_count) return false;
    return (xfd.conditions[number - 1].is_true & 1) != 0;
}

std::int32_t choose_layout(const Xfd& xfd) {
    if ((xfd.flags & XFD_SEVERAL_LAYOUTS) == 0) return 0;
    std::int32_t candidate = -1;
    for (std::int32_t i = 0; i < layout_scan_count(xfd); ++i) {
        const XfdItem& item = xfd.items[i];
        if (item.level == RECORD_LEVEL) {
            if (candidate >= 0) return candidate;
            candidate = i;
        } else if (item.level > RECORD_LEVEL && disqualifies(xfd, item)) {
            candidate = -1;
        }
    }
    return std::max(candidate, 0);
}
