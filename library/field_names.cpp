#include "library/field_names.h"

namespace library {

namespace {

std::string name_of(const XfdItem& item) {
    std::string text = item.name;
    for (int i = 0; i < item.dimensions(); ++i) {
        text += (i == 0 ? "(" : ",") + std::to_string(item.subscripts[i]);
    }
    return item.dimensions() > 0 ? text + ")" : text;
}

// "CUST-NAME (2, 1)" as "cust_name(2,1)".
std::string from_cobol(std::string_view name) {
    std::string text;
    for (const char c : name) {
        if (c == ' ') continue;
        const bool is_upper = c >= 'A' && c <= 'Z';
        text += c == '-' ? '_' : is_upper ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return text;
}

}  // namespace

FieldNames::FieldNames(const Xfd& xfd) : xfd_(xfd) {
    std::vector<const XfdItem*> groups;
    for (std::int32_t index = 0; index < xfd.item_count; ++index) {
        const XfdItem& item = xfd.items[index];
        while (!groups.empty() && groups.back()->level >= item.level) groups.pop_back();
        if (item.condition == XFD_GROUP) {
            groups.push_back(&item);
            continue;
        }
        Field field{index, name_of(item), {}};
        for (const XfdItem* group : groups) field.path.append(group->name).append("/");
        field.path += field.name;
        by_name_.emplace(field.name, count());
        fields_.push_back(std::move(field));
    }
}

const XfdItem* FieldNames::item(int field) const {
    return field >= 0 && field < count() ? &xfd_.items[at(field).index] : nullptr;
}

std::vector<int> FieldNames::find(std::string_view name) const {
    std::vector<int> found = find_exactly(name);
    return found.empty() ? find_exactly(from_cobol(name)) : found;
}

std::vector<int> FieldNames::find_exactly(std::string_view name) const {
    const std::size_t slash = name.rfind('/');
    const std::string_view last = slash == std::string_view::npos ? name : name.substr(slash + 1);
    std::vector<int> found;
    const auto [begin, end] = by_name_.equal_range(last);
    for (auto entry = begin; entry != end; ++entry) {
        const std::string_view path = at(entry->second).path;
        if (!path.ends_with(name)) continue;
        const std::size_t before = path.size() - name.size();
        if (before == 0 || path[before - 1] == '/') found.push_back(entry->second);
    }
    return found;
}

}  // namespace library
