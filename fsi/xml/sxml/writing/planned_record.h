// Writing a record by the plan of its layout.
#pragma once

#include "fsi/xml/sxml/writing/field_output.h"
#include "fsi/xml/sxml/writing/write_plan.h"

// Writes what the walk over the items would write of a record that is at least as long as the
// layout's least length, when nothing is traced and empty elements are not left out.
void write_planned(RecordWriter& writer, const LayoutPlan& plan);
