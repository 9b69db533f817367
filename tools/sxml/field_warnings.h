// Warnings about the contents of fields, of which a file may have very many.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "tools/sxml/errors.h"

namespace command {

// The first ten are printed, the rest is counted.
class FieldWarnings {
  public:
    // Counts one; true when it is to be printed.
    bool wants_next() { return ++count_ <= NAMED_AT_MOST; }
    std::uint64_t count() const { return count_; }

    // "WHERE: N things and what of them", `thing` in the singular; nothing when none were counted.
    void sum_up(const std::string& where, const std::string& thing, const std::string& rest) const {
        if (count_ == 0) return;
        std::string text = where + ": " + std::to_string(count_) + " " + thing;
        text += (count_ == 1 ? "" : "s") + rest;
        if (count_ > NAMED_AT_MOST) {
            text += "; the first " + std::to_string(NAMED_AT_MOST) + " are named above";
        }
        warn(text);
    }

  private:
    static constexpr std::uint64_t NAMED_AT_MOST = 10;
    std::uint64_t count_ = 0;
};

}  // namespace command
