#include "conversion/schemas/schema_set.h"

#include <filesystem>

#include "conversion/documents/document_source.h"
#include "conversion/schemas/local_files.h"
#include "platform/paths.h"

namespace conversion {

namespace {

constexpr std::size_t MOST_DOCUMENTS = 1000;

// The kind under which a component is found; empty for what is none.
std::string kind_of(const std::string& name) {
    if (name == "simpleType" || name == "complexType") return "type";
    if (name == "element" || name == "group" || name == "attributeGroup" || name == "attribute") {
        return name;
    }
    return {};
}

}  // namespace

Done SchemaSet::add(const std::string& file, const std::string& shown_name) {
    wanted_.push_back({file, shown_name, "", nullptr});
    while (!wanted_.empty()) {
        const Wanted next = std::move(wanted_.back());
        wanted_.pop_back();
        if (Done problem = load(next)) return problem;
    }
    return {};
}

Done SchemaSet::load(const Wanted& wanted) {
    if (Done problem = check_part(wanted.file)) {
        if (wanted.from == nullptr) return problem;
        problem->what = wanted.shown_name + ": " + problem->what;
        problem->place = wanted.from->place();
        return problem;
    }
    const auto path = std::filesystem::weakly_canonical(platform::path_of(wanted.file));
    const std::string taken_into = wanted.is_included ? wanted.target_namespace : "";
    const std::string name = platform::name_of(path) + "\n";
    if (const SchemaNode* known = known_root(name, taken_into)) {
        if (wanted.from == nullptr) take_top_elements(*known);
        return {};
    }
    if (documents_.size() >= MOST_DOCUMENTS) {
        return Problem{
            Cause::document,
            {.file = wanted.shown_name},
            "there are more than " + std::to_string(MOST_DOCUMENTS) + " schema documents",
            ""};
    }
    auto file = std::make_unique<SchemaFile>(SchemaFile{wanted.file, wanted.shown_name});
    Result<std::unique_ptr<SchemaNode>> root = read_schema(*file, nodes_);
    if (!root) return root.problem();
    file->target_namespace = (*root)->attribute("targetNamespace");
    if (wanted.is_included && file->target_namespace.empty()) {
        file->target_namespace = wanted.target_namespace;
        file->takes_namespace = true;
    }
    known_.emplace(name + (file->takes_namespace ? taken_into : ""), root->get());
    documents_.push_back({std::move(file), *std::move(root)});
    if (wanted.from == nullptr) take_top_elements(*documents_.back().root);
    return take_children(*documents_.back().root, wanted);
}

// One without a target namespace is another document in each namespace that it is taken into.
const SchemaNode* SchemaSet::known_root(const std::string& name,
                                        const std::string& taken_into) const {
    auto known = known_.find(name);
    if (known == known_.end() || !known->second->has("targetNamespace")) {
        known = known_.find(name + taken_into);
    }
    return known == known_.end() ? nullptr : known->second;
}

void SchemaSet::take_top_elements(const SchemaNode& root) {
    if (!given_.insert(&root).second) return;
    for (const auto& child : root.children) {
        if (child->name == "element") top_elements_.push_back(child.get());
    }
}

Done SchemaSet::take_children(const SchemaNode& root, const Wanted& wanted) {
    for (const auto& child : root.children) {
        const std::string& name = child->name;
        if (name == "include" || name == "import") {
            if (Done problem = want(*child, wanted)) return problem;
        } else if (name == "redefine" || name == "override") {
            return Problem{Cause::document, child->place(), "xs:" + name + " is not supported",
                           "include the schema, and change the types there"};
        } else {
            declare(*child);
        }
        note_references(*child);
    }
    return {};
}

Done SchemaSet::want(const SchemaNode& reference, const Wanted& by) {
    const std::string location = reference.attribute("schemaLocation");
    if (location.empty()) return {};
    const bool is_included = reference.name == "include";
    const std::string& own = reference.file->target_namespace;
    if (is_url(location) || is_url(by.shown_name)) {
        not_read_.try_emplace(is_included ? own : reference.attribute("namespace"), location);
        return {};
    }
    // Not from the copy that is kept of standard input.
    const std::string file = file_at(location, by.shown_name);
    wanted_.push_back({file, file, own, &reference, is_included});
    return {};
}

void SchemaSet::declare(const SchemaNode& node) {
    const std::string kind = kind_of(node.name);
    if (kind.empty()) return;
    const std::string key = component_key(node.file->target_namespace, node.attribute("name"));
    components_[kind].try_emplace(key, &node);
    if (kind != "element" || !node.has("substitutionGroup")) return;
    substitutes_[component_key_of(node, node.attribute("substitutionGroup"))].push_back(&node);
}

// Not recursive beyond the depth that read_schema allows.
void SchemaSet::note_references(const SchemaNode& node) {
    if (node.name == "element" && node.has("ref")) {
        referred_to_.insert(component_key_of(node, node.attribute("ref")));
    }
    for (const auto& child : node.children) note_references(*child);
}

std::vector<std::string> SchemaSet::files() const {
    std::vector<std::string> names;
    for (const Document& document : documents_) names.push_back(document.file->file);
    return names;
}

const SchemaNode* SchemaSet::find(const std::string& kind, const std::string& key) const {
    const auto components = components_.find(kind);
    if (components == components_.end()) return nullptr;
    const auto found = components->second.find(key);
    return found == components->second.end() ? nullptr : found->second;
}

const std::vector<const SchemaNode*>& SchemaSet::substitutes(const std::string& key) const {
    static const std::vector<const SchemaNode*> none;
    const auto found = substitutes_.find(key);
    return found == substitutes_.end() ? none : found->second;
}

std::string SchemaSet::hint_for(const std::string& key) const {
    const auto found = not_read_.find(key.substr(1, key.find('}') - 1));
    return found == not_read_.end() ? "" : "; its schema at " + found->second + " was not read";
}

}  // namespace conversion
