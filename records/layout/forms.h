// What the bytes of a field mean: type, digits and scale of its descriptor.
#pragma once

#include "records/layout/node.h"

namespace records {

// Sets the form of every field below (and including) the item.
void set_forms(Node& root, const LayoutOptions& options, Diagnostics& diagnostics);

// Bytes of any meaning, written as hexadecimal digits.
FieldForm opaque_form();

// Short name of a usage as `sxml layout` shows it.
const char* usage_name(Usage usage);

}  // namespace records
