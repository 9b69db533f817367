// Random copybooks and records, for tests of unforeseen cases.
//
// What the file interface cannot bring back is left out or told by returned():
//   - tables have two occurrences or more: one alone carries no number, and in or around another
//     table its place is lost with it;
//   - numbers are in the form in which they are stored, and truncated binary ones within their
//     picture; a COMP-2 has a value that its text holds, some 1e-100 to 1e100;
//   - texts are characters that XML allows, in the document's encoding, without NUL bytes (so
//     national fields hold no UTF-16 here);
//   - white space around a text, right-justified ones included, and binary data come back
//     otherwise.
#pragma once

#include <cstdint>
#include <random>
#include <string>

#include "records/description.h"

// How a layout is compiled and its document written.
struct LayoutChoices {
    records::LayoutOptions options;
    bool decimal_comma = false;
    bool latin1 = false;  // texts and document are in ISO-8859-1, else UTF-8
};

class RandomLayout {
  public:
    explicit RandomLayout(std::uint64_t seed) : random_(seed) {}

    LayoutChoices choices();
    // A copybook: one or several record layouts distinguished by a letter, with nested groups,
    // tables of up to three dimensions, redefinitions under conditions, every usage, and names that
    // come back in other groups.
    std::string copybook();
    // A record of a description compiled as choices() said, its fields filled with valid values.
    // Bytes that belong to no field are spaces.
    std::string record(records::Description& description);
    // What `record` comes back as when it is written and read into spaces.
    static std::string returned(records::Description& description, const std::string& record);

  private:
    int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random_); }
    bool one_in(int n) { return below(n) == 0; }
    std::string number(int least, int most) {
        return std::to_string(least + below(most - least + 1));
    }
    void line(int level, const std::string& text);
    void layout(int number, bool several);
    void group_items(int level, int dimensions, int names);
    void item(int level, int dimensions, const std::string& name);
    void variants(int level);
    std::string occurs(int dimensions);
    std::string usage();
    std::string display();
    std::string binary();
    std::string characters();
    void fill(XfdItem& field, std::string& record);
    void fill_text(const XfdItem& field, std::string& record);
    void fill_bytes(const XfdItem& field, std::string& record);
    void fill_number(const XfdItem& field);
    template <typename Float>
    void fill_float(const XfdItem& field);

    std::mt19937_64 random_;
    LayoutChoices choices_;
    std::string text_;
    int groups_ = 0;
    int items_left_ = 0;
};
