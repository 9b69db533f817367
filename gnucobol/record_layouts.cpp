#include "gnucobol/record_layouts.h"

#include <algorithm>

namespace gnucobol {

std::vector<RecordLayout> layouts_of(const Xfd& xfd) {
    std::vector<RecordLayout> layouts;
    for (std::int32_t i = 0; i < xfd.item_count; ++i) {
        const XfdItem& item = xfd.items[i];
        if (item.level == 1) {
            layouts.push_back(
                {i, i, static_cast<std::uint32_t>(std::max(item.data.length, 0)), {}});
        }
        if (layouts.empty()) continue;
        layouts.back().end_item = i + 1;
        if (item.condition <= 0 || item.condition > xfd.condition_count) continue;
        std::vector<std::int16_t>& conditions = layouts.back().conditions;
        if (conditions.empty() || conditions.back() != item.condition) {
            conditions.push_back(item.condition);
        }
    }
    return layouts;
}

}  // namespace gnucobol
