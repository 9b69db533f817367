// What the tests of the runtime share: a folder of their own, small files, random numbers.
#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <string>

#include "tests/support/scratch_folder.h"

// Sets an environment variable (or takes it away) while the object lives.
class Environment {
  public:
    Environment(const char* name, const char* value);
    ~Environment();
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

  private:
    const char* name_;
    std::optional<std::string> before_;
};

// A generator whose seed is printed when the test fails.
class Random {
  public:
    Random();
    unsigned below(unsigned limit) { return static_cast<unsigned>(engine_() % limit); }

  private:
    unsigned seed_;
    testing::ScopedTrace note_;
    std::mt19937 engine_;
};
