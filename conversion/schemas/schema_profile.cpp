#include "conversion/schemas/schema_profile.h"

#include <iterator>
#include <set>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "conversion/schemas/content_model.h"
#include "conversion/schemas/simple_types.h"

namespace conversion {

namespace {

Problem problem_at(const SchemaNode& node, std::string what, std::string remedy = "") {
    return {Cause::document, node.place(), std::move(what), std::move(remedy)};
}

std::string_view local_name(std::string_view name) {
    const std::size_t colon = name.find(':');
    return colon == name.npos ? name : name.substr(colon + 1);
}

class SchemaProfile {
  public:
    SchemaProfile(DocumentProfile& profile, const SchemaSet& schemas, const SchemaWishes& wishes)
        : profile_(profile), set_(schemas), wishes_(wishes), models_(schemas) {}

    Result<std::vector<Problem>> declare();

  private:
    // The type of an element: a complex one, a simple one, or the name of a simple one.
    struct Type {
        const SchemaNode* node = nullptr;
        const SchemaNode* named_at = nullptr;
        std::string name{};
    };

    Result<const SchemaNode*> document_element() const;
    Result<const SchemaNode*> only_element() const;
    Done declare_records_at_path(const SchemaNode& root);
    Result<Particle> step(const SchemaNode& element, const std::string& name);
    Result<Type> type_of(const SchemaNode& element) const;
    Done describe(ElementProfile& element, const SchemaNode& declaration, std::size_t depth);
    Done describe_text(ElementProfile& element, const Type& type);
    Done describe_complex(ElementProfile& element, const SchemaNode& type, std::size_t depth);
    Done describe_children(ElementProfile& element, const Content& content, std::size_t depth);
    Done describe_child(ElementProfile& element, ElementProfile& child, const Particle& particle,
                        std::size_t depth);
    std::string written_name(const ElementProfile& around, const SchemaNode& element) const;
    Done describe_attributes(ElementProfile& element, const Content& content);
    Done describe_attribute(ElementProfile& element, const SchemaNode& attribute,
                            const SchemaNode& declaration);
    void lose(const ElementProfile& element, const SchemaNode& at, std::string what,
              std::string remedy = "");

    DocumentProfile& profile_;
    const SchemaSet& set_;
    const SchemaWishes& wishes_;
    ContentModels models_;
    std::vector<Problem> losses_;
    std::set<std::pair<const SchemaNode*, std::string>> said_;
    std::set<const SchemaNode*> open_;  // complex types
    bool is_left_out_ = false;          // the element described last, unless samples have it
};

// Once for each place.
void SchemaProfile::lose(const ElementProfile& element, const SchemaNode& at, std::string what,
                         std::string remedy) {
    if (!said_.emplace(&at, what).second) return;
    losses_.push_back(problem_at(at, path_of(element) + ": " + std::move(what), std::move(remedy)));
}

Result<const SchemaNode*> SchemaProfile::only_element() const {
    std::vector<const SchemaNode*> candidates;
    for (const bool with_parts : {false, true}) {
        for (const SchemaNode* element : set_.top_elements()) {
            const std::string key =
                component_key(element->file->target_namespace, element->attribute("name"));
            const bool is_part = set_.is_referred_to(key) || element->has("substitutionGroup");
            const bool is_wanted = with_parts || !is_part;
            if (is_wanted && !element->is_true("abstract")) candidates.push_back(element);
        }
        if (!candidates.empty()) break;
    }
    if (candidates.size() == 1) return candidates.front();
    std::string names;
    for (const SchemaNode* candidate : candidates) {
        if (names.size() > 200) break;
        names += (names.empty() ? "" : ", ") + candidate->attribute("name");
    }
    if (names.empty()) {
        return Problem{Cause::document, {}, "the schema declares no element at its top", ""};
    }
    return problem_at(
        *candidates[0], "several elements can be the document element: " + names,
        "give a sample, or the path to the records with --record, as in orders/order");
}

Result<const SchemaNode*> SchemaProfile::document_element() const {
    std::string name(local_name(profile_.root().name));
    if (name.empty()) name = local_name(wishes_.path.substr(0, wishes_.path.find('/')));
    if (name.empty()) return only_element();
    for (const SchemaNode* element : set_.top_elements()) {
        if (element->attribute("name") == name) return element;
    }
    return Problem{Cause::document,
                   {},
                   "no schema declares the document element " + name,
                   "give the schema of these documents"};
}

Result<SchemaProfile::Type> SchemaProfile::type_of(const SchemaNode& element) const {
    const SchemaNode* at = &element;
    // An element without a type has that of the head of its substitution group.
    for (int heads = 0; at != nullptr && heads < 64; ++heads) {
        for (const std::string name : {"complexType", "simpleType"}) {
            if (const SchemaNode* type = at->child(name)) return Type{type, at};
        }
        if (at->has("type")) {
            const std::string name = at->attribute("type");
            const std::string key = component_key_of(*at, name);
            const SchemaNode* const type = set_.find("type", key);
            if (type != nullptr || is_built_in(key)) return Type{type, at, name};
            return problem_at(*at, "the type " + name + " is not declared" + set_.hint_for(key));
        }
        if (!at->has("substitutionGroup")) break;
        at = set_.find("element", component_key_of(*at, at->attribute("substitutionGroup")));
    }
    return Type{};
}

Done SchemaProfile::describe(ElementProfile& element, const SchemaNode& declaration,
                             std::size_t depth) {
    if (depth > DocumentProfile::MOST_DEPTH) {
        return problem_at(declaration, "elements nest deeper than " +
                                           std::to_string(DocumentProfile::MOST_DEPTH));
    }
    if (!element.declared) element.declared.emplace();
    element.declared->place = declaration.place();
    Result<Type> type = type_of(declaration);
    if (!type) return type.problem();
    Done problem = type->node != nullptr && type->node->name == "complexType"
                       ? describe_complex(element, *type->node, depth)
                       : describe_text(element, *type);
    if (problem) return problem;
    auto& text = element.declared->text;
    if (text && declaration.is_true("nillable")) text->may_be_empty = true;
    return {};
}

Done SchemaProfile::describe_text(ElementProfile& element, const Type& type) {
    if (type.node == nullptr && type.name.empty()) {
        element.declared->text = TextLimits{.shown = "no type"};
        return {};
    }
    const Result<TextLimits> limits = type.node != nullptr
                                          ? limits_of(set_, *type.node)
                                          : limits_of_type(set_, *type.named_at, type.name);
    if (!limits) return limits.problem();
    element.declared->text = *limits;
    return {};
}

Done SchemaProfile::describe_complex(ElementProfile& element, const SchemaNode& type,
                                     std::size_t depth) {
    if (!open_.insert(&type).second) {
        lose(element, type, "contains elements of its own type, which records cannot",
             "give a sample; what it holds is described as deep as it goes");
        is_left_out_ = true;
        return {};
    }
    if (type.is_true("abstract")) {
        lose(element, type, "the type is abstract, and xsi:type chooses another",
             "give a sample; what it holds is described");
    }
    const Result<const Content*> model = models_.of(type);
    if (!model) return model.problem();
    const Content* const content = *model;
    if (Done problem = describe_attributes(element, *content)) return problem;
    if (type.child("simpleContent") != nullptr) {
        if (Done problem = describe_text(element, {&type, &type})) return problem;
    } else if (content->is_mixed && content->elements.all().empty()) {
        element.declared->text = TextLimits{.shown = "text"};
    } else if (content->is_mixed) {
        lose(element, type, "mixed content: the texts beside elements cannot be read");
    } else if (content->elements.all().empty()) {
        element.declared->text = TextLimits{.length = 0, .shown = "without content"};
    }
    Done problem = describe_children(element, *content, depth);
    open_.erase(&type);
    return problem;
}

Done SchemaProfile::describe_children(ElementProfile& element, const Content& content,
                                      std::size_t depth) {
    if (content.any != nullptr) {
        lose(element, *content.any, "may hold elements of any name, which have no field",
             "give a sample; what it holds is described");
    }
    if (content.abstract != nullptr) {
        lose(element, *content.abstract,
             "no element can replace the abstract element " + content.abstract->attribute("ref"));
    }
    std::unordered_map<std::string, const ElementProfile*> samples;
    for (const ElementProfile& sample : element.children) {
        samples.emplace(std::string(local_name(sample.name)), &sample);
    }
    auto position = element.children.begin();
    for (const Particle& particle : content.elements.all()) {
        if (particle.most == 0) continue;
        const auto sample = samples.find(particle.name);
        const bool is_seen = sample != samples.end();
        if (!is_seen && wishes_.is_of_samples) continue;
        auto next = position;
        ElementProfile* const child = profile_.child(
            element, is_seen ? sample->second->name : written_name(element, *particle.element),
            next);
        if (child == nullptr) {
            return problem_at(*particle.from,
                              "there are more than " + std::to_string(DocumentProfile::MOST_PATHS) +
                                  " different elements",
                              "give samples, and --sampled to leave out what they do not have");
        }
        // In the order of the schema.
        element.children.splice(position, element.children, child->self);
        position = std::next(child->self);
        if (Done problem = describe_child(element, *child, particle, depth)) return problem;
    }
    return {};
}

Done SchemaProfile::describe_child(ElementProfile& element, ElementProfile& child,
                                   const Particle& particle, std::size_t depth) {
    child.declared.emplace(Declaration{{}, particle.least, particle.most});
    is_left_out_ = false;
    if (Done problem = describe(child, *particle.element, depth + 1)) return problem;
    if (is_left_out_ && child.count == 0) profile_.remove(element, child);
    is_left_out_ = false;
    return {};
}

// With the prefix that the samples have for its namespace.
std::string SchemaProfile::written_name(const ElementProfile& around,
                                        const SchemaNode& element) const {
    const std::string name = element.attribute("name");
    const SchemaNode* schema = &element;
    while (schema->parent != nullptr) schema = schema->parent;
    const bool is_top = element.parent == schema;
    const std::string form =
        element.has("form") ? element.attribute("form") : schema->attribute("elementFormDefault");
    if (!is_top && form != "qualified") return name;
    const std::string own = around.name.substr(0, around.name.find(':') + 1);
    std::string found;
    for (const auto& [prefix, uri] : profile_.prefixes()) {
        if (uri != element.file->target_namespace) continue;
        const std::string written = prefix.empty() ? "" : prefix + ":";
        if (written == own) return own + name;
        if (found.empty()) found = written;
    }
    return found + name;
}

// xml:lang and similar attributes are not data.
Done SchemaProfile::describe_attributes(ElementProfile& element, const Content& content) {
    for (const SchemaNode* attribute : content.attributes) {
        const SchemaNode* declaration = attribute;
        if (attribute->has("ref")) {
            const std::string key = component_key_of(*attribute, attribute->attribute("ref"));
            if (key.starts_with(component_key(XML_NAMESPACE, ""))) continue;
            declaration = set_.find("attribute", key);
            if (declaration == nullptr) {
                return problem_at(*attribute, "the attribute " + attribute->attribute("ref") +
                                                  " is not declared" + set_.hint_for(key));
            }
        }
        if (attribute->attribute("use") == "prohibited") continue;
        const bool is_of_root = element.parent == nullptr;
        if (profile_.wants_attributes() && !is_of_root) {
            if (Done problem = describe_attribute(element, *attribute, *declaration))
                return problem;
        } else if (element.attributes.line == 0) {
            element.attributes = attribute->place();
        }
    }
    return {};
}

Done SchemaProfile::describe_attribute(ElementProfile& element, const SchemaNode& attribute,
                                       const SchemaNode& declaration) {
    const std::string name = declaration.attribute("name");
    if (wishes_.is_of_samples && !DocumentProfile::has_attribute(element, name)) return {};
    ElementProfile* const made = profile_.attribute(element, name);
    if (made == nullptr) return problem_at(attribute, "there are too many attributes");
    if (made->declared) return {};  // a restriction says it again
    const bool is_required = attribute.attribute("use") == "required";
    made->declared.emplace(Declaration{attribute.place(), is_required ? 1U : 0U, 1});
    if (made->attributes.line == 0) made->attributes = attribute.place();
    return describe_text(
        *made, {declaration.child("simpleType"), &declaration, declaration.attribute("type")});
}

Result<Particle> SchemaProfile::step(const SchemaNode& element, const std::string& name) {
    Result<Type> type = type_of(element);
    if (!type) return type.problem();
    if (type->node != nullptr && type->node->name == "complexType") {
        const Result<const Content*> content = models_.of(*type->node);
        if (!content) return content.problem();
        for (const Particle& particle : (*content)->elements.all()) {
            if (particle.name == name) return particle;
        }
    }
    return problem_at(element, "has no element " + name + ", which the path to the records names");
}

Done SchemaProfile::declare_records_at_path(const SchemaNode& root) {
    const SchemaNode* element = &root;
    std::string name;
    for (std::size_t slash = wishes_.path.find('/'); slash != std::string::npos;) {
        const std::size_t next = wishes_.path.find('/', slash + 1);
        name = wishes_.path.substr(slash + 1, next - slash - 1);
        Result<Particle> particle = step(*element, std::string(local_name(name)));
        if (!particle) return particle.problem();
        element = particle->element;
        slash = next;
    }
    auto next = profile_.root().children.begin();
    return describe(*profile_.child(profile_.root(), name, next), *element, 1);
}

Result<std::vector<Problem>> SchemaProfile::declare() {
    const Result<const SchemaNode*> root = document_element();
    if (!root) return root.problem();
    ElementProfile& element = profile_.root();
    if (element.name.empty()) element.name = (*root)->attribute("name");
    Done problem =
        wishes_.path.empty() ? describe(element, **root, 0) : declare_records_at_path(**root);
    if (problem) return *std::move(problem);
    return std::move(losses_);
}

}  // namespace

Result<std::vector<Problem>> declare_by_schema(DocumentProfile& profile, const SchemaSet& schemas,
                                               const SchemaWishes& wishes) {
    return SchemaProfile(profile, schemas, wishes).declare();
}

}  // namespace conversion
