// Which fields of a record reach the document.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "host/record_description.h"
#include "tools/sxml/conditions.h"

namespace command {

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

// The fields of each record layout of a description, found once by the rules by which the module
// writes a record, so that choosing them for a record costs next to nothing.
class RecordFields {
  public:
    // `xfd` must outlive this. Throws Failure when its variants go in circles.
    explicit RecordFields(Xfd& xfd);

    // Evaluates the description's conditions on a record and gives the fields of the record's
    // layout. Of these, field_applies() tells which are written.
    std::span<const Field> choose(const void* record);

    // True when the field holds data in the record last chosen for, of `length` bytes.
    bool field_applies(const Field& field, std::int32_t length) const {
        return field.offset + field.length <= length && condition_holds(xfd_, field.condition);
    }
    // The field's name with its subscripts, such as "phone(2)".
    std::string name(const Field& field) const { return name(field.item); }
    // The same of an item of the description.
    std::string name(std::int32_t item) const;
    // All fields of all layouts.
    std::vector<Field> all() const;

  private:
    struct Layout {
        int first_item;
        int end_item;
        std::vector<Field> fields;
    };

    void collect(int index, std::vector<int>& path, std::vector<Field>& fields);
    int variant_of(int index, const std::vector<int>& path) const;
    int end_of_item(int index) const;
    bool qualifies(const Layout& layout) const;

    Xfd& xfd_;
    std::vector<Layout> layouts_;
    int visited_ = 0;  // items, while collecting
};

}  // namespace command
