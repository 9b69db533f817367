// From conditions as written, over names, to tests over places in the record.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "records/layout/node.h"

namespace records {

// Finds items by qualified name in all records of a source.
class NameScope {
  public:
    explicit NameScope(const std::vector<std::unique_ptr<Node>>& records);

    struct Found {
        const Node* node = nullptr;
        const ConditionName* condition = nullptr;  // when a level 88 was meant
        bool ambiguous = false;
    };
    // `name` is qualified: the item's own, then those of groups around it. Of several items the one
    // nearest to `from` is taken: inside it, then inside its parent, and so on outward.
    Found find(const std::vector<std::string>& name, const Node& from) const;

  private:
    struct Entry {
        const Node* node;
        const ConditionName* condition;
    };
    std::unordered_map<std::string, std::vector<Entry>> by_name_;
};

// The test that an item's `when` stands for; nothing after an error. Which tables an operand shares
// with `at` decides how it is subscripted.
std::optional<Test> resolve(const Expression& expression, const Node& at, const NameScope& scope,
                            Diagnostics& diagnostics);

// An item as a side of a comparison made at `at`.
Operand operand_of(const Node& item, const Node& at);

// A test as a person reads it.
std::string test_text(const Test& test);

}  // namespace records
