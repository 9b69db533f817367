#include "conversion/fields/record_fields.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "records/description.h"
#include "records/field_types.h"

namespace conversion {

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

Problem endless_variants(const Xfd& xfd) {
    Place place;
    place.file = xfd.name;
    return {Cause::layout, std::move(place),
            "the record's variants stand in for each other in circles",
            "give each variant a condition of its own (`*> sxml: when ...`)"};
}

}  // namespace

ElementNames element_names(const Xfd& xfd) {
    ElementNames names;
    for (std::int32_t i = 0; i < xfd.item_count; ++i) {
        const XfdItem& item = xfd.items[i];
        if (item.level > 1) (is_group(item) ? names.groups : names.fields).insert(item.name);
    }
    return names;
}

void evaluate_conditions(Xfd& xfd, const void* record) {
    for (int number = 1; number <= xfd.condition_count; ++number) {
        Q4TestCOBOLCond(&xfd, number, record);
    }
}

// Each search continues with the groups found already.
RecordFields::RecordFields(const Xfd& xfd) : xfd_(&xfd) {
    enclosing_.reserve(static_cast<std::size_t>(std::max(xfd.item_count, 0)));
    for (std::int32_t i = 0; i < xfd.item_count; ++i) {
        std::int32_t before = i - 1;
        while (before >= 0 && xfd.items[before].level >= xfd.items[i].level) {
            before = enclosing_[static_cast<std::size_t>(before)];
        }
        enclosing_.push_back(before);
    }
}

Result<RecordFields> RecordFields::of(const Xfd& xfd) {
    RecordFields result(xfd);
    if (xfd.item_count <= 0) return result;
    const bool has_several = has_several_layouts(xfd);
    const int scanned = std::min(xfd.record_scan_count, xfd.item_count);
    for (int index = 0; index < (has_several ? std::max(scanned, 1) : 1); ++index) {
        if (index > 0 && xfd.items[index].level != 1) continue;
        const int end = has_several ? std::min(result.end_of_item(index), std::max(scanned, 1))
                                    : xfd.item_count;
        RecordLayout layout = result.layout_at(index, end);
        std::vector<int> path;
        if (!result.collect(index, path, layout.fields)) return endless_variants(xfd);
        std::copy_if(layout.fields.begin(), layout.fields.end(), std::back_inserter(layout.texts),
                     [](const Field& field) { return field.kind == FieldKind::text; });
        result.layouts_.push_back(std::move(layout));
    }
    return result;
}

RecordLayout RecordFields::layout_at(int index, int end) const {
    RecordLayout layout{xfd_->items[index].name, index, end, 0, {}, {}, {}};
    layout.length = std::max(xfd_->items[index].data.length, 0);
    // The only layout is taken always; the conditions in it tell its fields apart.
    if (!has_several_layouts(*xfd_)) return layout;
    for (int i = index + 1; i < end; ++i) {
        const std::int16_t condition = xfd_->items[i].condition;
        if (condition == 0 || condition == XFD_GROUP) continue;
        std::vector<std::int16_t>& known = layout.conditions;
        if (std::find(known.begin(), known.end(), condition) == known.end()) {
            known.push_back(condition);
        }
    }
    return layout;
}

int RecordFields::end_of_item(int index) const {
    int end = index + 1;
    while (end < xfd_->item_count && xfd_->items[end].level > xfd_->items[index].level) ++end;
    return end;
}

// A group within a record of several layouts gives way to the item of the first condition that
// starts at the same place, unless that item is being written already.
int RecordFields::variant_of(int index, const std::vector<int>& path) const {
    const XfdItem& item = xfd_->items[index];
    if (!is_group(item) || !has_several_layouts(*xfd_) || item.level < 2) return index;
    for (int i = 0; i < xfd_->condition_count; ++i) {
        const int other = xfd_->conditions[i].item;
        if (other < 0 || other >= xfd_->item_count) continue;
        if (xfd_->items[other].offset != item.offset) continue;
        const bool is_open = std::find(path.begin(), path.end(), other) != path.end();
        return is_open ? index : other;
    }
    return index;
}

// `path`: the groups that are open.
bool RecordFields::collect(int index, std::vector<int>& path, std::vector<Field>& fields) {
    if (path.size() > MAX_DEPTH || ++visited_ > MAX_VISITED) return false;
    const int written = variant_of(index, path);
    const XfdItem& item = xfd_->items[written];
    if (!is_group(item)) {
        fields.push_back(
            {item.offset, item.data.length, item.condition, field_kind(item), written});
        return true;
    }
    path.push_back(written);
    const int end = end_of_item(written);
    for (int child = written + 1; child < end; child = end_of_item(child)) {
        if (!collect(child, path, fields)) return false;
    }
    path.pop_back();
    return true;
}

std::optional<std::size_t> RecordFields::choose(const Xfd& judged) const {
    if (layouts_.size() == 1) return 0;
    const auto found =
        std::find_if(layouts_.begin(), layouts_.end(), [&](const RecordLayout& layout) {
            return std::all_of(layout.conditions.begin(), layout.conditions.end(),
                               [&](std::int16_t each) { return condition_holds(judged, each); });
        });
    if (found == layouts_.end()) return std::nullopt;
    return static_cast<std::size_t>(found - layouts_.begin());
}

std::optional<std::size_t> RecordFields::layout_named(std::string_view name) const {
    const auto found =
        std::find_if(layouts_.begin(), layouts_.end(),
                     [&](const RecordLayout& layout) { return layout.name == name; });
    if (found == layouts_.end()) return std::nullopt;
    return static_cast<std::size_t>(found - layouts_.begin());
}

bool RecordFields::takes_any_record() const {
    return layouts_.size() < 2 ||
           std::any_of(layouts_.begin(), layouts_.end(),
                       [](const RecordLayout& layout) { return layout.conditions.empty(); });
}

std::string RecordFields::name(std::int32_t index) const {
    const XfdItem& item = xfd_->items[index];
    std::string text = item.name;
    for (int i = 0; i < item.dimensions(); ++i) {
        text += (i == 0 ? "(" : ",") + std::to_string(item.subscripts[i]);
    }
    return item.dimensions() > 0 ? text + ")" : text;
}

std::string RecordFields::path(std::int32_t index) const {
    std::string text = xfd_->items[index].name;
    std::int32_t at = enclosing_[static_cast<std::size_t>(index)];
    while (at >= 0 && xfd_->items[at].level > 1) {
        text.insert(0, std::string(xfd_->items[at].name) + "/");
        at = enclosing_[static_cast<std::size_t>(at)];
    }
    return text;
}

}  // namespace conversion
