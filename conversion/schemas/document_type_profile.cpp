#include "conversion/schemas/document_type_profile.h"

#include <algorithm>
#include <iterator>
#include <list>
#include <set>
#include <string>
#include <utility>

namespace conversion {

namespace {

using Kind = DeclaredElement::Kind;

class TypeProfile {
  public:
    TypeProfile(DocumentProfile& profile, const DocumentType& type, const SchemaWishes& wishes)
        : profile_(profile), type_(type), wishes_(wishes) {}

    Result<std::vector<Problem>> declare() {
        Done problem = wishes_.path.empty() ? describe(profile_.root(), 0)
                                            : describe_samples(profile_.root(), 0);
        if (problem) return *std::move(problem);
        return std::move(losses_);
    }

  private:
    // Once for each name.
    void lose(const ElementProfile& element, const DeclaredElement& declared, std::string what) {
        if (!said_.insert(element.name + ": " + what).second) return;
        const std::string name = element.parent == nullptr ? element.name : path_of(element);
        losses_.push_back({Cause::document, declared.place, name + ": " + std::move(what),
                           "what the samples have of it is described"});
    }

    Done describe(ElementProfile& element, std::size_t depth) {
        const DeclaredElement* const found = type_.find(element.name);
        if (found == nullptr) return describe_samples(element, depth);
        const DeclaredElement& declared = *found;
        if (element.declared) element.declared->place = declared.place;
        if (declared.kind == Kind::any) lose(element, declared, "may hold elements of any name");
        if (declared.kind == Kind::mixed) {
            lose(element, declared, "mixed content: the texts beside elements cannot be read");
        }
        if (declared.kind == Kind::empty && element.declared) {
            element.declared->text = TextLimits{.length = 0, .shown = "without content"};
        }
        if (declared.kind == Kind::text && element.declared) element.declared->has_text = true;
        if (Done problem = describe_attributes(element, declared)) return problem;
        open_.insert(element.name);
        Done problem = describe_children(element, declared, depth);
        open_.erase(element.name);
        return problem;
    }

    // What samples have in an element that is not declared. Not deeper than samples are.
    Done describe_samples(ElementProfile& element, std::size_t depth) {
        for (ElementProfile& child : element.children) {
            if (Done problem = describe(child, depth + 1)) return problem;
        }
        return {};
    }

    Done describe_children(ElementProfile& element, const DeclaredElement& declared,
                           std::size_t depth) {
        auto position = element.children.begin();
        for (const Particle& particle : declared.elements.all()) {
            const bool is_seen = element.by_name.count(particle.name) > 0;
            const bool is_open = open_.count(particle.name) > 0;
            if (is_open) lose(element, declared, "contains " + particle.name + " again and again");
            if (!is_seen && (is_open || wishes_.is_of_samples)) continue;
            if (depth >= DocumentProfile::MOST_DEPTH) return too_many(declared);
            auto next = position;
            ElementProfile* const child = profile_.child(element, particle.name, next);
            if (child == nullptr) return too_many(declared);
            // In the order of the content model.
            element.children.splice(position, element.children, child->self);
            position = std::next(child->self);
            if (!child->declared) child->declared.emplace();
            child->declared->place = declared.place;
            child->declared->least = particle.least;
            child->declared->most = particle.most;
            if (is_open) continue;
            if (Done problem = describe(*child, depth + 1)) return problem;
        }
        return {};
    }

    static Problem too_many(const DeclaredElement& declared) {
        return {Cause::document, declared.place,
                "there are more than " + std::to_string(DocumentProfile::MOST_PATHS) +
                    " different elements, or they nest deeper than " +
                    std::to_string(DocumentProfile::MOST_DEPTH),
                "--sampled leaves out what the samples do not have"};
    }

    Done describe_attributes(ElementProfile& element, const DeclaredElement& declared) {
        const bool is_wanted = profile_.wants_attributes() && element.parent != nullptr;
        for (const DeclaredAttribute& attribute : declared.attributes) {
            const bool is_seen = DocumentProfile::has_attribute(element, attribute.name);
            if (wishes_.is_of_samples && !is_seen) continue;
            if (!is_wanted) {
                if (element.attributes.line == 0) element.attributes = attribute.place;
                continue;
            }
            ElementProfile* const made = profile_.attribute(element, attribute.name);
            if (made == nullptr) return too_many(declared);
            if (made->attributes.line == 0) made->attributes = attribute.place;
            made->declared.emplace(
                Declaration{attribute.place, attribute.is_required ? 1U : 0U, 1});
            if (!attribute.values.empty()) made->declared->text = limits_of(attribute.values);
        }
        return {};
    }

    static TextLimits limits_of(const std::vector<std::string>& values) {
        TextLimits limits{.length = 0, .shown = "one of " + std::to_string(values.size())};
        for (const std::string& value : values) {
            limits.length = std::max<std::uint64_t>(*limits.length, value.size());
        }
        return limits;
    }

    DocumentProfile& profile_;
    const DocumentType& type_;
    const SchemaWishes& wishes_;
    std::set<std::string> open_;
    std::set<std::string> said_;
    std::vector<Problem> losses_;
};

}  // namespace

Result<std::vector<Problem>> declare_by_type(DocumentProfile& profile, const DocumentType& type,
                                             const SchemaWishes& wishes) {
    return TypeProfile(profile, type, wishes).declare();
}

}  // namespace conversion
