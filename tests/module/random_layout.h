// Copybooks and records made up at random, for tests that want to meet what nobody thought of.
#pragma once

#include <cstdint>
#include <random>
#include <string>

#include "host/records/description.h"

class RandomLayout {
  public:
    explicit RandomLayout(std::uint64_t seed) : random_(seed) {}

    // A copybook: one or several record layouts told apart by a letter, with nested groups, tables
    // of up to three dimensions, redefinitions under conditions, every usage, and names that come
    // back in other groups.
    std::string copybook();
    // A record of a description, its fields filled with valid values. Texts begin with a character
    // that is not blank; bytes that belong to no field are spaces.
    std::string record(records::Description& description);

  private:
    int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random_); }
    bool one_in(int n) { return below(n) == 0; }
    void line(int level, const std::string& text);
    void layout(int number, bool several);
    void group_items(int level, int dimensions, int names);
    void item(int level, int dimensions, const std::string& name);
    void variants(int level);
    std::string occurs(int dimensions);
    std::string usage();
    void fill(XfdItem& field, std::string& record);
    void fill_text(XfdItem& field, std::string& record);
    void fill_float(XfdItem& field);

    std::mt19937_64 random_;
    std::string text_;
    int groups_ = 0;
    int items_left_ = 0;
};
