// Copybook text to the text of its tree and messages, as one string to compare.
#pragma once

#include <string>
#include <string_view>

#include "records/copybook.h"

namespace records {

// The dump of the tree, or "nothing\n" when there is none, followed by the diagnostics.
std::string compile_text(std::string_view text, const CopybookOptions& options = {});
std::string compile_file(const std::string& file, const CopybookOptions& options = {});

}  // namespace records
