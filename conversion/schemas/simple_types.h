// What the simple types of a schema allow.
#pragma once

#include <cstddef>
#include <string>

#include "conversion/problem.h"
#include "conversion/samples/declaration.h"
#include "conversion/schemas/schema_set.h"

namespace conversion {

// What texts of a named type can be: one that is built in, a simple type, or a complex one with
// simple content. `from` is where it is named. A problem when it is not such a type, or is derived
// from itself. Throws std::bad_alloc.
Result<TextLimits> limits_of_type(const SchemaSet& set, const SchemaNode& from,
                                  const std::string& type);

// The same of an xs:simpleType, or of an xs:complexType with simple content.
Result<TextLimits> limits_of(const SchemaSet& set, const SchemaNode& type);

}  // namespace conversion
