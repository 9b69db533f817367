// Which elements a content model mentions, and how often each may be there.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace conversion {

struct SchemaNode;

// An element that another one may hold, however often it is mentioned there.
struct Particle {
    std::string name;
    const SchemaNode* element;  // its declaration in a schema; null of a document type
    const SchemaNode* from;     // where it is mentioned first, likewise
    std::uint64_t least;
    std::uint64_t most;  // Declaration::UNBOUNDED
};

// Elements in the order in which they are mentioned first, one for each name.
class Particles {
  public:
    // An element that comes after the others, or that may stand in their place.
    void add(const Particle& particle, bool is_alternative);
    void add(const Particles& others, bool are_alternatives);
    void repeat(std::uint64_t least, std::uint64_t most);
    const std::vector<Particle>& all() const { return all_; }

  private:
    std::vector<Particle> all_;
    std::unordered_map<std::string, std::size_t> by_name_;
};

}  // namespace conversion
