// From LAYOUT on the command line to a compiled record description.
#pragma once

#include "records/description.h"
#include "tools/sxml/options.h"

namespace command {

enum class Reports { shown, hidden };

// Compiles the layout. Errors, warnings and notes go to standard error unless hidden. Throws
// Failure (status 1) when there is no usable description. Names follow 4GL_COLUMN_CASE, so the
// settings must have been applied.
records::Description load_layout(const LayoutOptions& options, records::RecordEncoding encoding,
                                 Reports reports = Reports::shown);

}  // namespace command
