// Fields by their names.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "conversion/problem.h"
#include "host/record_description.h"

namespace library {

// The fields of a description: its items other than groups.
class FieldNames {
  public:
    // `xfd` must outlive this.
    explicit FieldNames(const Xfd& xfd);

    int count() const { return static_cast<int>(fields_.size()); }
    // The item of a field; null for a number that is not a field's.
    const XfdItem* item(int field) const;
    // Only for fields.
    const std::string& name(int field) const { return at(field).name; }
    const std::string& path(int field) const { return at(field).path; }
    // The item's index in the description.
    std::int32_t index(int field) const { return at(field).index; }

    // The fields that a name can mean: with subscripts, and any number of the groups around it in
    // front, separated by "/". As it stands, or else in COBOL's spelling.
    std::vector<int> find(std::string_view name) const;

  private:
    struct Field {
        std::int32_t index;
        std::string name;
        std::string path;
    };
    const Field& at(int field) const { return fields_[static_cast<std::size_t>(field)]; }
    std::vector<int> find_exactly(std::string_view name) const;

    const Xfd& xfd_;
    std::vector<Field> fields_;
    std::multimap<std::string, int, std::less<>> by_name_;
};

}  // namespace library
