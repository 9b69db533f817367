// Which elements and attributes the complex types of a schema have.
#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "conversion/problem.h"
#include "conversion/schemas/particles.h"
#include "conversion/schemas/schema_set.h"

namespace conversion {

struct Content {
    Particles elements{};
    std::vector<const SchemaNode*> attributes{};  // xs:attribute, with a name or a ref
    bool is_mixed = false;
    const SchemaNode* any = nullptr;       // the first that allows elements of any name
    const SchemaNode* abstract = nullptr;  // the first element for which nothing stands
};

class ContentModels {
  public:
    explicit ContentModels(const SchemaSet& set) : set_(set) {}

    // Of an xs:complexType; with simple content only the attributes. A problem for what is not
    // declared, what contains or extends itself, and for work without bound. The pointer is never
    // null; the content stays as long as this. Throws std::bad_alloc.
    Result<const Content*> of(const SchemaNode& complex_type);

  private:
    Done collect(const SchemaNode& complex_type, Content& content);
    Done collect_derived(const SchemaNode& derivation, Content& content);
    Done collect_own(const SchemaNode& node, Content& content);
    Done collect_attributes(const SchemaNode& node, Content& content);
    Result<Particles> particles_of(const SchemaNode& node, Content& content);
    Result<Particles> particles_of_compositor(const SchemaNode& node, Content& content);
    Result<Particles> particles_of_group(const SchemaNode& reference, Content& content);
    Result<Particles> particles_of_element(const SchemaNode& node, Content& content);
    Done add_substitutes(const SchemaNode& from, const SchemaNode& head, Particles& particles);
    Done enter(const SchemaNode& node);
    Done work(const SchemaNode& node);

    const SchemaSet& set_;
    std::unordered_map<const SchemaNode*, Content> known_;
    std::set<const SchemaNode*> open_;  // types and groups
    std::size_t depth_ = 0;             // of model groups that are looked into
    std::size_t work_ = 0;
};

}  // namespace conversion
