#include "conversion/schemas/particles.h"

#include <algorithm>

#include "conversion/samples/declaration.h"

namespace conversion {

namespace {

constexpr std::uint64_t UNBOUNDED = Declaration::UNBOUNDED;

std::uint64_t sum(std::uint64_t a, std::uint64_t b) {
    return a > UNBOUNDED - b ? UNBOUNDED : a + b;
}

std::uint64_t product(std::uint64_t a, std::uint64_t b) {
    if (a == 0 || b == 0) return 0;
    return a > UNBOUNDED / b ? UNBOUNDED : a * b;
}

}  // namespace

void Particles::add(const Particle& particle, bool is_alternative) {
    const auto [found, is_new] = by_name_.try_emplace(particle.name, all_.size());
    if (is_new) {
        all_.push_back(particle);
        return;
    }
    Particle& same = all_[found->second];
    same.least =
        is_alternative ? std::min(same.least, particle.least) : sum(same.least, particle.least);
    same.most = is_alternative ? std::max(same.most, particle.most) : sum(same.most, particle.most);
}

void Particles::add(const Particles& others, bool are_alternatives) {
    for (const Particle& particle : others.all()) add(particle, are_alternatives);
}

void Particles::repeat(std::uint64_t least, std::uint64_t most) {
    for (Particle& particle : all_) {
        particle.least = product(particle.least, least);
        particle.most = product(particle.most, most);
    }
}

}  // namespace conversion
