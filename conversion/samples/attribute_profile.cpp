#include "conversion/samples/attribute_profile.h"

#include <iterator>
#include <string>
#include <unordered_set>
#include <utility>

#include "conversion/documents/attribute_elements.h"

namespace conversion {

namespace {

using Names = std::unordered_set<std::string>;

bool has_text(const ElementProfile& element) {
    if (element.text.texts() > 0) return true;
    const auto& declared = element.declared;
    return declared && (declared->has_text || (declared->text && declared->text->length != 0));
}

// Of elements at this one and below it that hold elements, and that have a text.
void collect(const ElementProfile& element, Names& holders, Names& texts) {
    if (!element.children.empty()) holders.insert(element.name);
    if (has_text(element)) texts.insert(element.name);
    for (const ElementProfile& child : element.children) collect(child, holders, texts);
}

class AttributePlacement {
  public:
    explicit AttributePlacement(DocumentProfile& profile) : profile_(profile) {}

    std::vector<Problem> place() {
        ElementProfile& root = profile_.root();
        collect(root, holders_, texts_);
        for (ElementProfile& record : root.children) place_within(record, true);
        return std::move(losses_);
    }

  private:
    void place_within(ElementProfile& element, bool is_record) {
        for (auto child = element.children.begin(); child != element.children.end();) {
            const auto next = std::next(child);
            place_within(*child, false);
            child = next;
        }
        if (is_record && element.children.empty() && has_text(element)) add_text(element);
        const bool is_holder =
            is_record || holders_.count(element.name) > 0 || texts_.count(element.name) == 0;
        auto inside = element.children.begin();
        auto after = is_record ? inside : std::next(element.self);
        while (!element.attribute_values.empty()) {
            const auto first = element.attribute_values.begin();
            if (is_holder) {
                first->most = 1;
                first->parents = first->count;
                move(element.attribute_values, *first, element, inside);
            } else {
                if (first->declared) first->declared->most = occurs(element);
                move(element.attribute_values, *first, *element.parent, after);
            }
        }
        element.attributes = {};
    }

    // A record's own text, as a field.
    void add_text(ElementProfile& record) {
        auto next = record.children.begin();
        const std::string name = attribute_element_name(record.name, "text");
        ElementProfile* const field = profile_.child(record, name, next);
        if (field == nullptr) return;
        field->text = std::exchange(record.text, {});
        field->declared = std::exchange(record.declared, {});
        if (field->declared) field->declared->least = field->declared->most = 1;
        field->count = record.count;
        field->parents = record.count;
        field->most = 1;
    }

    static std::uint64_t occurs(const ElementProfile& element) {
        return element.declared ? element.declared->most : 1;
    }

    void move(std::list<ElementProfile>& from, ElementProfile& attribute, ElementProfile& parent,
              std::list<ElementProfile>::iterator position) {
        if (parent.by_name.count(attribute.name) > 0) {
            losses_.push_back({Cause::document, attribute.attributes,
                               path_of(attribute) + ": an attribute and an element have this name",
                               "leave --attributes out, or give the field to one of them"});
            from.erase(attribute.self);
            return;
        }
        attribute.parent = &parent;
        attribute.attributes = {};
        parent.by_name.emplace(attribute.name, &attribute);
        parent.children.splice(position, from, attribute.self);
    }

    DocumentProfile& profile_;
    Names holders_;
    Names texts_;
    std::vector<Problem> losses_;
};

}  // namespace

std::vector<Problem> place_attributes(DocumentProfile& profile) {
    return AttributePlacement(profile).place();
}

}  // namespace conversion
