// Blanks at the ends of JUSTIFIED and edited fields.
#pragma once

#include <cstdint>
#include <string_view>

#include "records/field_types.h"

namespace records {

// The edges of a field of this type and picture (upper case, as written).
FieldEdges edges_of(FieldType type, std::string_view picture);

// Moves the text of a character field to the position that its edges define. A document does not
// keep blanks at the ends of a text, so the module stores it at the field's start. A text that does
// not fit there stays where it is.
void align_field(const XfdItem& field, std::uint8_t* record);

}  // namespace records
