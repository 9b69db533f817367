// COBOL names for the elements of a document.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace conversion {

// Gives each element a name of its own: at most 30 letters, digits and hyphens, not reserved.
class CobolNames {
  public:
    // A new name, made from the element's: "lineItem" becomes LINE-ITEM. Where that is taken or
    // reserved, the name of what is around comes before it (for a record, which has nothing around
    // it, -RECORD after it), or a number after it.
    std::string add(std::string_view element, std::string_view around);

  private:
    bool take(const std::string& name);

    std::unordered_set<std::string> taken_;
    std::unordered_map<std::string, int> numbers_;  // the last one after each name
};

}  // namespace conversion
