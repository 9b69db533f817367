#include "conversion/documents/attribute_elements.h"

#include <algorithm>

namespace conversion {

namespace {

constexpr std::uint64_t MOST_EMPTY = 1'000'000;  // in a record

}  // namespace

bool is_data_attribute(std::string_view name) {
    return name != "xmlns" && !name.starts_with("xmlns:") && !name.starts_with("xml:") &&
           !name.starts_with("xsi:");
}

std::string attribute_element_name(std::string_view element, std::string_view attribute) {
    std::string name(attribute);
    std::replace(name.begin(), name.end(), ':', '_');
    return std::string(element) + "_" + name;
}

const std::vector<AttributeElements::Made>& AttributeElements::begin(const char* name,
                                                                     const char** attributes) {
    made_.clear();
    const std::size_t depth = open_.size();
    if (depth == 1) empty_ones_ = 0;
    open_.push_back({name});
    if (depth == 0) return made_;  // the document element has no place in a record
    const bool is_group = depth == 1 || rule_.groups.count(name) > 0;
    if (!is_group) ++open_[depth - 1].children[name].count;
    for (; *attributes != nullptr; attributes += 2) {
        if (!is_data_attribute(attributes[0])) continue;
        Made made{attribute_element_name(name, attributes[0]), attributes[1]};
        (is_group ? made_ : open_.back().after).push_back(std::move(made));
    }
    return made_;
}

const std::vector<AttributeElements::Made>& AttributeElements::end() {
    made_.clear();
    const Open closed = std::move(open_.back());
    open_.pop_back();
    if (closed.after.empty()) return made_;
    Siblings& siblings = open_.back().children[closed.name];
    for (const Made& attribute : closed.after) make_after(siblings, attribute);
    return made_;
}

bool AttributeElements::begins_text(std::string_view text) {
    const bool is_of_record = open_.size() == 2 && !is_in_text_;
    if (!is_of_record || text.find_first_not_of(" \t\r\n") == text.npos) return false;
    text_element_ = attribute_element_name(open_.back().name, "text");
    is_in_text_ = rule_.fields.count(text_element_) > 0;
    return is_in_text_;
}

void AttributeElements::make_after(Siblings& siblings, Made attribute) {
    std::uint64_t& made = siblings.made[attribute.name];
    for (; made + 1 < siblings.count && !is_too_much_; ++made) {
        is_too_much_ = ++empty_ones_ > MOST_EMPTY;
        made_.push_back({attribute.name, ""});
    }
    ++made;
    made_.push_back(std::move(attribute));
}

}  // namespace conversion
