// Builds record descriptions by hand, item by item, as a host would lay them out.
#pragma once

#include <cstring>
#include <string_view>
#include <vector>

#include "host/record_description.h"
#include "records/field_types.h"

// A description under construction. Items are appended in layout order; the functions give the
// index of the item. The description itself is made by xfd() and lives as long as the builder.
class XfdBuilder {
  public:
    explicit XfdBuilder(std::string_view name) {
        name.copy(xfd_.name, sizeof xfd_.name - 1);
        conventions_.decimal_point = '.';
    }

    int group(int level, std::string_view name, int offset = 0) {
        XfdItem& item = add(level, name, offset, 0);
        item.condition = XFD_GROUP;
        return last();
    }
    int text(int level, std::string_view name, int offset, int length, int condition = 0) {
        XfdItem& item = add(level, name, offset, length);
        item.data.type = records::ALPHANUMERIC;
        item.condition = static_cast<std::int16_t>(condition);
        return last();
    }
    int number(int level, std::string_view name, int offset, int length, int digits, int scale = 0,
               std::int16_t type = records::DISPLAY_UNSIGNED) {
        XfdItem& item = add(level, name, offset, length);
        item.data.type = type;
        item.data.digits = static_cast<std::int8_t>(digits);
        item.data.scale = static_cast<std::int8_t>(scale);
        records::set_field_extra(item.data, {item.data.digits, item.data.scale, 0, {}});
        return last();
    }
    // Says of the last item which occurrence it is, dimension by dimension: {subscript, maximum}.
    void occurrence(std::initializer_list<std::pair<int, int>> dimensions) {
        XfdItem& item = items_.back();
        // The bits above the low four are the host's.
        item.dimensions_word = 0xABCDEF00U | static_cast<std::uint32_t>(dimensions.size());
        std::size_t i = 0;
        for (const auto& [subscript, maximum] : dimensions) {
            item.subscripts[i] = static_cast<std::int16_t>(subscript);
            item.occurs_max[i++] = static_cast<std::int16_t>(maximum);
        }
    }
    // A condition that holds when the record has `value` at `offset`; tied to `item`.
    void condition(int offset, char value, int item) {
        XfdCondition condition{};
        condition.item = static_cast<std::int16_t>(item);
        condition.host1[0] = static_cast<std::uint8_t>(offset);
        condition.host1[1] = static_cast<std::uint8_t>(value);
        conditions_.push_back(condition);
    }
    static void test_condition(Xfd* xfd, int number, const void* record) {
        XfdCondition& condition = xfd->conditions[number - 1];
        const char* bytes = static_cast<const char*>(record);
        const bool holds = bytes[condition.host1[0]] == static_cast<char>(condition.host1[1]);
        condition.is_true = static_cast<std::uint8_t>(holds ? 0xFF : 0xFE);
    }

    XfdItem& item(int index) { return items_[static_cast<std::size_t>(index)]; }
    XfdConventions& conventions() { return conventions_; }
    Xfd* xfd(bool several_layouts = false) {
        xfd_.conventions = &conventions_;
        xfd_.conditions = conditions_.data();
        xfd_.condition_count = static_cast<std::int16_t>(conditions_.size());
        xfd_.items = items_.data();
        xfd_.item_count = static_cast<std::int32_t>(items_.size());
        xfd_.record_scan_count = xfd_.item_count;
        xfd_.flags = several_layouts ? 0xFF : 0xFE;
        return &xfd_;
    }

  private:
    int last() const { return static_cast<int>(items_.size()) - 1; }
    XfdItem& add(int level, std::string_view name, int offset, int length) {
        XfdItem& item = items_.emplace_back();
        item.level = static_cast<std::int16_t>(level);
        item.offset = offset;
        item.data.length = length;
        name.copy(item.name, sizeof item.name - 1);
        return item;
    }

    Xfd xfd_{};
    XfdConventions conventions_{};
    std::vector<XfdItem> items_;
    std::vector<XfdCondition> conditions_;
};
