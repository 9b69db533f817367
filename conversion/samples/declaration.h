// What a schema or a document type says of an element, beside what samples show.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>

#include "conversion/problem.h"

namespace conversion {

// The texts that a type allows.
struct TextLimits {
    bool is_number = false;  // digits with or without sign and point
    // Of texts: how long they may be at most, in characters. Nothing: unlimited.
    std::optional<std::uint64_t> length{};
    // Of numbers: digits before the point, and after it. Nothing: unlimited.
    std::optional<int> whole_digits{};
    std::optional<int> decimals{};
    bool may_be_negative = false;
    bool may_be_empty = false;
    std::string shown{};  // for a comment: "xs:decimal, 9 digits"
};

struct Declaration {
    static constexpr std::uint64_t UNBOUNDED = std::numeric_limits<std::uint64_t>::max();

    Place place{};  // where it is declared
    // In one element around it.
    std::uint64_t least = 1;
    std::uint64_t most = 1;
    std::optional<TextLimits> text{};  // nothing: it has no text, or it is not said which
    bool has_text = false;             // it may have one, of which nothing else is said
};

}  // namespace conversion
