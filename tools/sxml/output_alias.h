// The name under which the module sees an output.
#pragma once

#include <string>

#include "tools/sxml/atomic_output.h"

namespace command {

// The module writes the name of the file that it writes to into the document, where the temporary
// name of an output has no place. While this object lives the current folder is a private one, in
// which a symbolic link with the target's own name leads to the output.
class OutputAlias {
  public:
    // Throws Failure.
    explicit OutputAlias(const AtomicOutput& output);
    ~OutputAlias();
    OutputAlias(const OutputAlias&) = delete;
    OutputAlias& operator=(const OutputAlias&) = delete;

    // The name to open: the last part of the target's, with what no comment of a document may hold
    // (two hyphens in a row) or not every encoding has replaced by underscores.
    const std::string& name() const { return name_; }

  private:
    std::string name_;
    TemporaryLink link_;
    int previous_folder_;
};

}  // namespace command
