#include "conversion/schemas/content_model.h"

#include "conversion/samples/declaration.h"

namespace conversion {

namespace {

constexpr std::uint64_t UNBOUNDED = Declaration::UNBOUNDED;
constexpr std::size_t MOST_WORK = 300'000;  // steps
constexpr std::size_t MOST_OPEN = 64;       // types and groups, each within the one before
constexpr std::size_t MOST_DEPTH = 512;     // sequences and the like, over all open groups

Problem problem_at(const SchemaNode& node, std::string what) {
    return {Cause::document, node.place(), std::move(what), ""};
}

Problem too_deep(const SchemaNode& node) {
    return problem_at(node, "contains or extends itself, or nests too deep");
}

// A number of occurrences as it is written.
std::uint64_t occurrences(const SchemaNode& node, std::string_view name) {
    constexpr std::size_t MOST_LENGTH = 15;
    const std::string text = node.attribute(name);
    if (text.empty()) return 1;
    if (text.size() > MOST_LENGTH || text.find_first_not_of("0123456789") != text.npos) {
        return UNBOUNDED;
    }
    return std::stoull(text);
}

bool is_model_group(const SchemaNode& node) {
    return node.name == "sequence" || node.name == "choice" || node.name == "all" ||
           node.name == "group";
}

}  // namespace

Done ContentModels::work(const SchemaNode& node) {
    if (++work_ <= MOST_WORK) return {};
    return problem_at(node, "the schema is too large when its groups are put together");
}

// A type or group that is looked into, until it is erased from `open_`.
Done ContentModels::enter(const SchemaNode& node) {
    if (open_.size() >= MOST_OPEN || !open_.insert(&node).second) return too_deep(node);
    return {};
}

Result<const Content*> ContentModels::of(const SchemaNode& complex_type) {
    const auto known = known_.find(&complex_type);
    if (known != known_.end()) return &known->second;
    Content content;
    open_.clear();
    depth_ = 0;
    if (Done problem = collect(complex_type, content)) return *std::move(problem);
    return &known_.emplace(&complex_type, std::move(content)).first->second;
}

Done ContentModels::collect(const SchemaNode& complex_type, Content& content) {
    if (Done problem = enter(complex_type)) return problem;
    content.is_mixed = content.is_mixed || complex_type.is_true("mixed");
    Done problem;
    const SchemaNode* derived = complex_type.child("complexContent");
    const bool is_simple = derived == nullptr && complex_type.child("simpleContent") != nullptr;
    if (is_simple) derived = complex_type.child("simpleContent");
    if (derived == nullptr) {
        problem = collect_own(complex_type, content);
    } else {
        content.is_mixed = content.is_mixed || derived->is_true("mixed");
        for (const auto& child : derived->children) {
            if (!problem) problem = collect_derived(*child, content);
        }
    }
    open_.erase(&complex_type);
    return problem;
}

// What an extension has beyond its base; of a restriction, which says all of its elements again,
// the base has the attributes.
Done ContentModels::collect_derived(const SchemaNode& derivation, Content& content) {
    const std::string key = component_key_of(derivation, derivation.attribute("base"));
    const SchemaNode* const base = set_.find("type", key);
    if (base == nullptr && !is_built_in(key)) {
        return problem_at(derivation, "the type " + derivation.attribute("base") +
                                          " is not declared" + set_.hint_for(key));
    }
    if (base != nullptr && base->name == "complexType") {
        Content of_base;
        if (Done problem = collect(*base, of_base)) return problem;
        content.attributes.insert(content.attributes.end(), of_base.attributes.begin(),
                                  of_base.attributes.end());
        if (derivation.name == "extension") {
            content.elements = std::move(of_base.elements);
            content.is_mixed = content.is_mixed || of_base.is_mixed;
            content.any = of_base.any;
            content.abstract = of_base.abstract;
        }
    }
    return collect_own(derivation, content);
}

Done ContentModels::collect_own(const SchemaNode& node, Content& content) {
    for (const auto& child : node.children) {
        if (child->name == "any" || child->name == "openContent") content.any = child.get();
        if (!is_model_group(*child)) continue;
        Result<Particles> particles = particles_of(*child, content);
        if (!particles) return particles.problem();
        content.elements.add(*particles, false);
    }
    return collect_attributes(node, content);
}

Done ContentModels::collect_attributes(const SchemaNode& node, Content& content) {
    for (const auto& child : node.children) {
        if (Done problem = work(*child)) return problem;
        if (child->name == "attribute") content.attributes.push_back(child.get());
        if (child->name != "attributeGroup") continue;
        const std::string key = component_key_of(*child, child->attribute("ref"));
        const SchemaNode* const group = set_.find("attributeGroup", key);
        if (group == nullptr) {
            return problem_at(*child, "the group " + child->attribute("ref") + " is not declared" +
                                          set_.hint_for(key));
        }
        if (Done problem = enter(*group)) return problem;
        if (Done problem = collect_attributes(*group, content)) return problem;
        open_.erase(group);
    }
    return {};
}

Result<Particles> ContentModels::particles_of(const SchemaNode& node, Content& content) {
    if (Done problem = work(node)) return *std::move(problem);
    if (++depth_ > MOST_DEPTH) return too_deep(node);
    Result<Particles> result = node.name == "group" ? particles_of_group(node, content)
                                                    : particles_of_compositor(node, content);
    --depth_;
    return result;
}

Result<Particles> ContentModels::particles_of_compositor(const SchemaNode& node, Content& content) {
    Particles result;
    const bool is_choice = node.name == "choice";
    std::size_t alternatives = 0;
    for (const auto& child : node.children) {
        if (child->name == "any") {
            if (content.any == nullptr) content.any = child.get();
            ++alternatives;
            continue;
        }
        const bool is_element = child->name == "element";
        if (!is_element && !is_model_group(*child)) continue;
        ++alternatives;
        Result<Particles> inner =
            is_element ? particles_of_element(*child, content) : particles_of(*child, content);
        if (!inner) return inner.problem();
        for (const Particle& particle : inner->all()) {
            if (Done problem = work(*child)) return *std::move(problem);
            result.add(particle, is_choice);
        }
    }
    const bool is_certain = !is_choice || alternatives < 2;
    result.repeat(is_certain ? occurrences(node, "minOccurs") : 0, occurrences(node, "maxOccurs"));
    return result;
}

Result<Particles> ContentModels::particles_of_group(const SchemaNode& reference, Content& content) {
    const std::string key = component_key_of(reference, reference.attribute("ref"));
    const SchemaNode* const group = set_.find("group", key);
    if (group == nullptr) {
        return problem_at(reference, "the group " + reference.attribute("ref") +
                                         " is not declared" + set_.hint_for(key));
    }
    if (Done problem = enter(*group)) return *std::move(problem);
    Particles result;
    for (const auto& child : group->children) {
        if (!is_model_group(*child)) continue;
        Result<Particles> inner = particles_of(*child, content);
        if (!inner) return inner.problem();
        result.add(*inner, false);
    }
    open_.erase(group);
    result.repeat(occurrences(reference, "minOccurs"), occurrences(reference, "maxOccurs"));
    return result;
}

Result<Particles> ContentModels::particles_of_element(const SchemaNode& node, Content& content) {
    Particles result;
    const SchemaNode* element = &node;
    if (node.has("ref")) {
        const std::string key = component_key_of(node, node.attribute("ref"));
        element = set_.find("element", key);
        if (element == nullptr) {
            return problem_at(node, "the element " + node.attribute("ref") + " is not declared" +
                                        set_.hint_for(key));
        }
        if (Done problem = add_substitutes(node, *element, result)) return *std::move(problem);
    }
    const bool is_alone = result.all().empty();
    const bool is_abstract = element->is_true("abstract");
    if (!is_abstract) result.add({element->attribute("name"), element, &node, 1, 1}, true);
    if (is_abstract && is_alone && content.abstract == nullptr) content.abstract = &node;
    const bool is_certain = result.all().size() == 1;
    result.repeat(is_certain ? occurrences(node, "minOccurs") : 0, occurrences(node, "maxOccurs"));
    return result;
}

// The elements of the head's substitution group, and of theirs.
Done ContentModels::add_substitutes(const SchemaNode& from, const SchemaNode& head,
                                    Particles& particles) {
    std::vector<const SchemaNode*> heads = {&head};
    std::set<const SchemaNode*> seen = {&head};
    for (std::size_t at = 0; at < heads.size(); ++at) {
        const std::string key =
            component_key(heads[at]->file->target_namespace, heads[at]->attribute("name"));
        for (const SchemaNode* substitute : set_.substitutes(key)) {
            if (Done problem = work(from)) return problem;
            if (!seen.insert(substitute).second) continue;
            heads.push_back(substitute);
            if (substitute->is_true("abstract")) continue;
            particles.add({substitute->attribute("name"), substitute, &from, 1, 1}, true);
        }
    }
    return {};
}

}  // namespace conversion
