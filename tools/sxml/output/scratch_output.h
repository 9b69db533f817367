// A file that the module writes for the command alone.
#pragma once

#include <string>

#include "platform/temporary_files.h"
#include "tools/sxml/output/atomic_output.h"

namespace command {

// In a private folder, which is removed with this object.
class ScratchOutput {
  public:
    // Throws Failure when there is no place for temporary files.
    ScratchOutput();

    const AtomicOutput& output() const { return output_; }
    // What was written. Throws Failure.
    std::string text() const;

  private:
    platform::TemporaryFolder folder_;
    AtomicOutput output_;
};

}  // namespace command
