#include "tests/runtime/scratch.h"

#include <cstdlib>

Environment::Environment(const char* name, const char* value) : name_(name) {
    if (const char* before = std::getenv(name); before != nullptr) before_ = before;
    value != nullptr ? setenv(name, value, 1) : unsetenv(name);
}

Environment::~Environment() {
    before_.has_value() ? setenv(name_, before_->c_str(), 1) : unsetenv(name_);
}

Random::Random()
    : seed_(std::random_device()()),
      note_(__FILE__, __LINE__, "seed " + std::to_string(seed_)),
      engine_(seed_) {}
