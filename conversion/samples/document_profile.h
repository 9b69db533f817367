// What sample documents hold, path by path: what a record layout for them needs to know.
#pragma once

#include <cstdint>
#include <list>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "conversion/problem.h"
#include "conversion/samples/declaration.h"

namespace conversion {

// The texts of all elements of one path. Lengths are those of trimmed texts.
class TextProfile {
  public:
    // Adds the text of one element: its first bytes (at most HEAD, all of a shorter text), and its
    // length. In UTF-8.
    void add(std::string_view head, std::uint64_t bytes, std::uint64_t characters);
    static constexpr std::size_t HEAD = 40;  // bytes; no number or date is longer

    std::uint64_t texts() const { return texts_; }  // that are not empty
    std::uint64_t most_bytes() const { return most_bytes_; }
    std::uint64_t most_characters() const { return most_characters_; }
    // Every text is a number that a field gives back: at most 18 digits in all, no plus sign,
    // exponent or zeros in front.
    bool is_number() const;
    bool is_negative() const { return has_minus_; }  // some are
    bool has_zero() const { return has_zero_; }      // of numbers: some are
    int whole_digits() const { return whole_digits_; }
    int decimals() const { return most_decimals_; }
    // Texts have different numbers of decimals.
    bool has_mixed_decimals() const { return least_decimals_ != most_decimals_; }
    // Every text begins with a date as in 2026-11-23, with or without a time.
    bool is_date() const { return texts_ > 0 && are_dates_; }

  private:
    bool add_number(std::string_view text);

    std::uint64_t texts_ = 0;
    std::uint64_t most_bytes_ = 0;
    std::uint64_t most_characters_ = 0;
    bool are_numbers_ = true;
    bool are_dates_ = true;
    bool has_minus_ = false;
    bool has_zero_ = false;
    int whole_digits_ = 0;
    int least_decimals_ = 0;
    int most_decimals_ = 0;
};

// All elements of one path.
struct ElementProfile {
    std::string name;
    ElementProfile* parent = nullptr;      // null for the document element
    std::list<ElementProfile> children{};  // in the order in which they were found
    std::unordered_map<std::string, ElementProfile*> by_name{};
    std::uint64_t count = 0;    // elements
    std::uint64_t parents = 0;  // elements around that have one at least
    std::uint64_t most = 0;     // in one element around
    TextProfile text{};
    Place attributes{};  // the first with values; line 0 when there is none
    Place mixed{};       // the first with a text beside elements, likewise
    // When attributes are wanted, those with data, each called as the element that stands for it;
    // `attributes` of these is where the first is, `parent` the element that has it, `parents` and
    // `most` count as if it came after that.
    std::list<ElementProfile> attribute_values{};
    std::optional<Declaration> declared{};  // nothing: by no schema and no document type

    // While profiling: where it stands in the list that it is in, how many there are in the element
    // around that is open, and which one that is, by its count.
    std::list<ElementProfile>::iterator self{};
    std::uint64_t here = 0;
    std::uint64_t opened_in = 0;
};

// The path from below the document element, as in "invoice/line/price".
std::string path_of(const ElementProfile& element);

// Reads any number of documents, each once, in memory that grows with the number of different paths
// only.
class DocumentProfile {
  public:
    static constexpr std::size_t MOST_PATHS = 100'000;
    static constexpr std::size_t MOST_DEPTH = 64;
    static constexpr std::size_t MOST_ATTRIBUTES = 1000;  // of the elements of one path

    // Profiles attributes, too, as elements. To be called before anything is added.
    void want_attributes() { wants_attributes_ = true; }
    bool wants_attributes() const { return wants_attributes_; }

    // Adds the document in a file; `shown_name` is what problems call it. A problem when it cannot
    // be read, is not well-formed, has another document element than the one before, more than
    // MOST_PATHS paths or elements nested deeper than MOST_DEPTH. Throws std::bad_alloc.
    Done add(const std::string& file, const std::string& shown_name);

    // The document element; its children are the kinds of records.
    const ElementProfile& root() const { return root_; }
    ElementProfile& root() { return root_; }

    // Prefixes that the samples' document elements declare, each with its URI; "" is the default.
    const std::vector<std::pair<std::string, std::string>>& prefixes() const { return prefixes_; }

    // Whether a sample has the attribute of this name. False when attributes are not wanted.
    static bool has_attribute(const ElementProfile& of, const std::string& name);
    // The attribute of this name, as an element. Null when there are too many paths. Throws
    // std::bad_alloc.
    ElementProfile* attribute(ElementProfile& of, const std::string& name);

    // The child of this name. A new one, without elements, comes before `next`, which is then, or
    // otherwise, what comes after the child. Null when there are MOST_PATHS already. Throws
    // std::bad_alloc.
    ElementProfile* child(ElementProfile& parent, const std::string& name,
                          std::list<ElementProfile>::iterator& next);
    static void remove(ElementProfile& parent, ElementProfile& child);

  private:
    ElementProfile root_{};
    std::size_t paths_ = 0;
    bool wants_attributes_ = false;
    std::vector<std::pair<std::string, std::string>> prefixes_{};
    friend class ProfileReader;
};

}  // namespace conversion
