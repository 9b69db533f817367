#include "records/layout/names.h"

#include <algorithm>
#include <cctype>
#include <memory>
#include <set>
#include <unordered_map>
#include <utility>

#include "records/layout/placement.h"

namespace records {
namespace {

bool is_letter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}
bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

std::string folded(std::string_view name) {
    std::string result(name);
    for (char& c : result) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return result;
}

bool starts_with_xml(std::string_view name) {
    return folded(name.substr(0, 3)) == "xml";
}

// Finds names for the items of a description that are valid together.
class NameSettler {
  public:
    NameSettler(const LayoutOptions& options, Diagnostics& diagnostics, bool several_layouts)
        : options_(options), diagnostics_(diagnostics), several_(several_layouts) {}

    void settle(Node& node, const Node* layout, std::set<std::string>& siblings) {
        if (node.name.empty() && !node.is_group()) return;
        if (node.name.empty()) {  // a dissolved group's items stand among its siblings
            for (const auto& child : node.children) settle(*child, layout, siblings);
            return;
        }
        shorten(node);
        if (clashes(node, layout, siblings)) rename(node, layout, siblings);
        const std::string key = folded(node.name);
        siblings.insert(key);
        const auto [entry, is_new] = declared_.try_emplace(key, Declared{&node, layout});
        if (!is_new) warn_if_different(*entry->second.node, node);
        std::set<std::string> own;
        for (const auto& child : node.children) settle(*child, layout, own);
    }

    bool has(const std::string& name) const { return declared_.count(folded(name)) > 0; }

  private:
    struct Declared {
        const Node* node;
        const Node* layout;
    };

    // Both have this name on purpose.
    static bool is_given(const Node& node) {
        return node.source->xml_name == node.name && !node.name.empty();
    }

    void shorten(Node& node) {
        if (node.name.size() <= MAX_ITEM_NAME) return;
        const std::string cut = cut_name(node.name, MAX_ITEM_NAME);
        diagnostics_.warning(node.source->place, "the name " + node.name + " is longer than " +
                                                     std::to_string(MAX_ITEM_NAME) +
                                                     " characters; it becomes " + cut);
        node.name = cut;
    }

    bool clashes(const Node& node, const Node* layout,
                 const std::set<std::string>& siblings) const {
        const std::string key = folded(node.name);
        if (siblings.count(key) > 0) return true;
        const auto found = declared_.find(key);
        if (found == declared_.end()) return false;
        const Node& other = *found->second.node;
        if (is_given(node) && is_given(other)) return false;
        if (node.is_group() || other.is_group()) return true;
        if (node.name != other.name) return true;
        // A field read before its record's layout is known must not take the text of another
        // layout's field of the same name.
        return several_ && found->second.layout != layout &&
               (node.condition == 0 || other.condition == 0) && !same_place(node, other);
    }

    static bool same_place(const Node& first, const Node& second) {
        return first.offset == second.offset && first.size == second.size &&
               first.form == second.form && first.occurs == second.occurs;
    }

    void rename(Node& node, const Node* layout, const std::set<std::string>& siblings) {
        const Node* around = node.parent;
        while (around != nullptr && around->name.empty()) around = around->parent;
        const std::string old = node.name;
        const std::string base =
            cut_name(around != nullptr ? join_names(around->name, old, options_.name_case) : old,
                     MAX_ITEM_NAME);
        node.name = base;
        int& number = numbers_.try_emplace(folded(base), 1).first->second;
        while (clashes(node, layout, siblings)) {
            const std::string suffix = std::to_string(++number);
            node.name = join_names(cut_name(base, MAX_ITEM_NAME - suffix.size() - 1), suffix,
                                   options_.name_case);
        }
        diagnostics_.warning(
            node.source->place,
            "another item is called " + old + " in XML already; this one becomes " + node.name);
    }

    void warn_if_different(const Node& first, const Node& second) {
        if (first.is_group() || second.is_group()) return warn_of_groups(second);
        const bool alike = is_numeric_type(first.form.type) == is_numeric_type(second.form.type) &&
                           first.form.digits == second.form.digits &&
                           first.form.scale == second.form.scale &&
                           (is_numeric_type(first.form.type) || first.size == second.size);
        if (alike || !warned_.insert(first.name).second) return;
        diagnostics_.warning(second.source->place,
                             "fields called " + first.name +
                                 " differ in type or size; an XML Schema describes the first of "
                                 "them only");
    }

    void warn_of_groups(const Node& second) {
        if (!warned_.insert(second.name).second) return;
        diagnostics_.warning(second.source->place,
                             "several items are given the name " + second.name +
                                 ", one of them a group; such documents have no valid DTD, and an "
                                 "XML Schema describes the first of them only");
    }

    const LayoutOptions& options_;
    Diagnostics& diagnostics_;
    bool several_;
    std::unordered_map<std::string, Declared> declared_;  // by folded name, the first of each
    std::unordered_map<std::string, int> numbers_;        // the last one given to each name
    std::set<std::string> warned_;
};

void set_name_from_directive(Node& node, const LayoutOptions& options, Diagnostics& diagnostics) {
    const DataItem& item = *node.source;
    if (!is_xml_name(item.xml_name)) {
        node.name = xml_name(item.xml_name, options.name_case);
        diagnostics.warning(item.place, "\"" + item.xml_name +
                                            "\" is not a usable XML name (letters, digits, - _ . , "
                                            "a letter or _ first, not xml...); it becomes " +
                                            node.name);
        return;
    }
    node.name = as_read(item.xml_name, options.name_case);
    if (node.name == item.xml_name) return;
    diagnostics.warning(item.place, "the name " + item.xml_name +
                                        " would not read back under this 4GL_COLUMN_CASE; it "
                                        "becomes " +
                                        node.name);
}

}  // namespace

bool is_xml_name(std::string_view name) {
    // A prefix is a name by itself.
    const std::size_t colon = name.find(':');
    if (colon != name.npos) {
        const std::string_view local = name.substr(colon + 1);
        return local.find(':') == local.npos && is_xml_name(name.substr(0, colon)) &&
               !local.empty() && (is_letter(local[0]) || local[0] == '_') &&
               is_xml_name("_" + std::string(local));
    }
    if (name.empty() || !(is_letter(name[0]) || name[0] == '_') || starts_with_xml(name)) {
        return false;
    }
    return std::all_of(name.begin(), name.end(), [](char c) {
        return is_letter(c) || is_digit(c) || c == '-' || c == '_' || c == '.';
    });
}

std::string as_read(std::string name, NameCase name_case) {
    if (name_case == NameCase::unchanged) return name;
    std::replace(name.begin(), name.end(), '-', '_');
    return name_case == NameCase::lower ? folded(name) : name;
}

std::string xml_name(std::string_view name, NameCase name_case) {
    std::string result = as_read(std::string(name), name_case);
    for (char& c : result) {
        if (!is_letter(c) && !is_digit(c) && c != '-' && c != '_' && c != '.') c = '_';
    }
    const bool starts_well = !result.empty() && (is_letter(result[0]) || result[0] == '_');
    return starts_well && !starts_with_xml(result) ? result : "_" + result;
}

std::string cut_name(std::string name, std::size_t limit) {
    if (name.size() > limit) name.resize(limit);
    return name;
}

std::string join_names(const std::string& first, const std::string& second, NameCase name_case) {
    return first + (name_case == NameCase::unchanged ? '-' : '_') + second;
}

void set_names(Node& root, const LayoutOptions& options, Diagnostics& diagnostics, int& fillers) {
    const auto visit = [&](const auto& self, Node& node) -> void {
        const DataItem& item = *node.source;
        if (item.hidden) return;
        if (!item.xml_name.empty()) {
            set_name_from_directive(node, options, diagnostics);
        } else if (!item.name.empty()) {
            node.name = xml_name(item.name, options.name_case);
        } else if (node.parent == nullptr) {
            node.name = xml_name("RECORD", options.name_case);
        } else if (options.filler || (node.is_group() && node.occurs > 1)) {
            // A table needs an element for each occurrence; its items could not follow each other
            // in turns otherwise.
            node.name = xml_name("FILLER-" + std::to_string(++fillers), options.name_case);
        }
        for (const auto& child : node.children) self(self, *child);
    };
    visit(visit, root);
}

std::string settle_names(const std::vector<std::unique_ptr<Node>>& layouts,
                         const std::string& description_name, const std::string& source,
                         const LayoutOptions& options, Diagnostics& diagnostics) {
    NameSettler settler(options, diagnostics, layouts.size() > 1);
    std::set<std::string> top;
    for (const auto& layout : layouts) settler.settle(*layout, layout.get(), top);
    if (!settler.has(description_name)) return description_name;
    const std::string base = join_names(cut_name(description_name, MAX_DESCRIPTION_NAME - 15),
                                        xml_name("FILE", options.name_case), options.name_case);
    std::string name = base;
    for (int number = 2; settler.has(name); ++number) {
        name = join_names(base, std::to_string(number), options.name_case);
    }
    Place place;
    place.file = std::make_shared<const std::string>(source);
    diagnostics.warning(std::move(place),
                        "an item is called " + description_name +
                            " like the description; the document element becomes " + name);
    return name;
}

}  // namespace records
