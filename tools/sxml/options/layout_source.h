// From LAYOUT on the command line to compiled record descriptions.
#pragma once

#include <optional>
#include <string>

#include "records/description.h"
#include "tools/sxml/options/options.h"
#include "tools/sxml/options/run_files.h"

namespace command {

// The source of record descriptions: a file, or "-" or a pipe, which is read only once.
class LayoutSource {
  public:
    // The options must outlive this. Throws Failure for a pipe that cannot be read.
    explicit LayoutSource(const LayoutOptions& options);

    // Compiles the layout, and notes the files that are read for it in `files`. Errors, warnings
    // and notes go to standard error. Throws Failure (status 1) when there is no
    // usable description. Names follow 4GL_COLUMN_CASE, so the settings must have been applied.
    records::Description load(records::RecordEncoding encoding, RunFiles& files) const;

    // Compiles the same layout again for other records, without messages. Throws Failure.
    records::Description load_quietly(records::RecordEncoding encoding) const;

  private:
    records::Description load(records::RecordEncoding encoding, records::Diagnostics& diagnostics,
                              bool is_told) const;
    std::optional<records::Description> compile(const records::LayoutOptions& layout,
                                                records::Diagnostics& diagnostics) const;

    const LayoutOptions& options_;
    std::string name_;                 // as it is shown in messages
    std::optional<std::string> text_;  // what a pipe gave
};

}  // namespace command
