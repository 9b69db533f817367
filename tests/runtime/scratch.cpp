#include "tests/runtime/scratch.h"

#include <cstdlib>

#include "tests/support/system.h"

Environment::Environment(const char* name, const char* value) : name_(name) {
    if (const char* before = std::getenv(name); before != nullptr) before_ = before;
    set_variable(name, value);
}

Environment::~Environment() {
    set_variable(name_, before_.has_value() ? before_->c_str() : nullptr);
}

Random::Random()
    : seed_(std::random_device()()),
      note_(__FILE__, __LINE__, "seed " + std::to_string(seed_)),
      engine_(seed_) {}
