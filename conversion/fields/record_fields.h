// The record layouts of a description, and which fields of a record hold data.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "conversion/problem.h"
#include "host/record_description.h"

namespace conversion {

enum class FieldKind : std::uint8_t {
    text,            // characters
    display_number,  // digits, which are characters
    other_number,    // packed, binary and the like
    opaque           // written as hexadecimal text
};

struct Field {
    std::int32_t offset;
    std::int32_t length;
    std::int16_t condition;
    FieldKind kind;
    std::int32_t item;  // index in the description
};

struct RecordLayout {
    std::string name;                      // of its element
    std::int32_t first_item;               // the item of level 1
    std::int32_t end_item;                 // after the last
    std::int32_t length;                   // bytes
    std::vector<std::int16_t> conditions;  // of several layouts: all that hold in its records
    std::vector<Field> fields;             // those that are written, variants resolved
    std::vector<Field> texts;              // of these, those of kind text
};

// Evaluates all conditions of a description on a record; the results are kept in the description.
void evaluate_conditions(Xfd& xfd, const void* record);

// Whether a condition (0: none) held when it was last evaluated with `xfd`.
inline bool condition_holds(const Xfd& xfd, std::int16_t condition) {
    if (condition == 0) return true;
    return condition > 0 && condition <= xfd.condition_count &&
           (xfd.conditions[condition - 1].is_true & 1) != 0;
}

// Names of the elements below the records' own: those that hold elements, and those that are
// fields.
struct ElementNames {
    std::unordered_set<std::string> groups{};
    std::unordered_set<std::string> fields{};
};
// Throws std::bad_alloc.
ElementNames element_names(const Xfd& xfd);

// Found once for a description, by the rules by which the module writes a record, so that choosing
// a layout for a record costs next to nothing.
class RecordFields {
  public:
    // `xfd` must outlive this. A problem when its variants stand in for each other in circles.
    static Result<RecordFields> of(const Xfd& xfd);

    // In the description's order; at least one, unless the description has no items.
    const std::vector<RecordLayout>& layouts() const { return layouts_; }
    // The layout whose conditions all hold in the record last evaluated with `judged`, a copy of
    // the description: the only layout, or the first that qualifies. Nothing when there are several
    // and none does.
    std::optional<std::size_t> choose(const Xfd& judged) const;
    // The first layout whose element has this name.
    std::optional<std::size_t> layout_named(std::string_view name) const;
    // False when each of several layouts has a condition.
    bool takes_any_record() const;
    // A field's name with its subscripts, such as "phone(2)".
    std::string name(std::int32_t item) const;
    // The names of a field and the groups around it below the record, as in "address/street".
    std::string path(std::int32_t item) const;

  private:
    explicit RecordFields(const Xfd& xfd);
    bool collect(int index, std::vector<int>& path, std::vector<Field>& fields);
    int variant_of(int index, const std::vector<int>& path) const;
    int end_of_item(int index) const;
    RecordLayout layout_at(int index, int end) const;

    const Xfd* xfd_;
    std::vector<std::int32_t> enclosing_;  // per item: the group around it; -1: none
    std::vector<RecordLayout> layouts_;
    int visited_ = 0;  // items, while collecting
};

// Whether a field lies in a record of `length` bytes, and its condition holds in it.
inline bool holds_data(const Field& field, const Xfd& judged, std::int32_t length) {
    return field.offset + field.length <= length && condition_holds(judged, field.condition);
}

}  // namespace conversion
