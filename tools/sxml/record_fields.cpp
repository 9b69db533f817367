#include "tools/sxml/record_fields.h"

#include <algorithm>

#include "records/field_types.h"
#include "tools/sxml/errors.h"

namespace command {

namespace {

// Above what any description without a circle of variants comes to.
constexpr std::size_t MAX_DEPTH = 100;
constexpr int MAX_VISITED = 4'000'000;

bool is_group(const XfdItem& item) {
    return item.condition == XFD_GROUP;
}

bool has_several_layouts(const Xfd& xfd) {
    return (xfd.flags & XFD_SEVERAL_LAYOUTS) != 0;
}

FieldKind field_kind(const XfdItem& item) {
    if (item.format == XFD_FORMAT_BINARY) return FieldKind::opaque;
    if (!is_numeric_type(item.data.type)) return FieldKind::text;
    const bool display = item.data.type >= records::DISPLAY_UNSIGNED &&
                         item.data.type <= records::DISPLAY_SIGN_LEADING_SEPARATE;
    return display ? FieldKind::display_number : FieldKind::other_number;
}

}  // namespace

RecordFields::RecordFields(Xfd& xfd) : xfd_(xfd) {
    if (xfd.item_count <= 0) return;
    const int scanned =
        has_several_layouts(xfd) ? std::min(xfd.record_scan_count, xfd.item_count) : 1;
    for (int index = 0; index < std::max(scanned, 1); ++index) {
        if (index > 0 && xfd.items[index].level != 1) continue;
        Layout layout{index, std::min(end_of_item(index), std::max(scanned, 1)), {}};
        std::vector<int> path;
        collect(index, path, layout.fields);
        layouts_.push_back(std::move(layout));
    }
}

int RecordFields::end_of_item(int index) const {
    int end = index + 1;
    while (end < xfd_.item_count && xfd_.items[end].level > xfd_.items[index].level) ++end;
    return end;
}

// A group within a record of several layouts gives way to the item of the first condition that
// starts at the same place, unless that item is being written already.
int RecordFields::variant_of(int index, const std::vector<int>& path) const {
    const XfdItem& item = xfd_.items[index];
    if (!is_group(item) || !has_several_layouts(xfd_) || item.level < 2) return index;
    for (int i = 0; i < xfd_.condition_count; ++i) {
        const int other = xfd_.conditions[i].item;
        if (other < 0 || other >= xfd_.item_count) continue;
        if (xfd_.items[other].offset != item.offset) continue;
        const bool is_open = std::find(path.begin(), path.end(), other) != path.end();
        return is_open ? index : other;
    }
    return index;
}

// `path`: the groups that are open.
void RecordFields::collect(int index, std::vector<int>& path, std::vector<Field>& fields) {
    if (path.size() > MAX_DEPTH || ++visited_ > MAX_VISITED) {
        fail(std::string(xfd_.name) + ": the record's variants stand in for each other in circles");
    }
    const int written = variant_of(index, path);
    const XfdItem& item = xfd_.items[written];
    if (!is_group(item)) {
        fields.push_back(
            {item.offset, item.data.length, item.condition, field_kind(item), written});
        return;
    }
    path.push_back(written);
    const int end = end_of_item(written);
    for (int child = written + 1; child < end; child = end_of_item(child)) {
        collect(child, path, fields);
    }
    path.pop_back();
}

bool RecordFields::qualifies(const Layout& layout) const {
    for (int i = layout.first_item + 1; i < layout.end_item; ++i) {
        const std::int16_t condition = xfd_.items[i].condition;
        if (condition != XFD_GROUP && !condition_holds(xfd_, condition)) return false;
    }
    return true;
}

std::span<const Field> RecordFields::choose(const void* record) {
    evaluate_conditions(xfd_, record);
    if (layouts_.empty()) return {};
    for (const Layout& layout : layouts_) {
        if (layouts_.size() == 1 || qualifies(layout)) return layout.fields;
    }
    return layouts_.front().fields;
}

std::string RecordFields::name(std::int32_t index) const {
    const XfdItem& item = xfd_.items[index];
    std::string text = item.name;
    for (int i = 0; i < item.dimensions(); ++i) {
        text += (i == 0 ? "(" : ",") + std::to_string(item.subscripts[i]);
    }
    return item.dimensions() > 0 ? text + ")" : text;
}

std::vector<Field> RecordFields::all() const {
    std::vector<Field> fields;
    for (const Layout& layout : layouts_) {
        fields.insert(fields.end(), layout.fields.begin(), layout.fields.end());
    }
    return fields;
}

}  // namespace command
