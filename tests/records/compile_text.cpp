#include "tests/records/compile_text.h"

#include "tests/records/tree_dump.h"

namespace records {

namespace {

std::string describe(const std::optional<RecordSource>& source, const Diagnostics& diagnostics) {
    return (source ? dump_tree(*source) : "nothing\n") + diagnostics.text();
}

}  // namespace

std::string compile_text(std::string_view text, const CopybookOptions& options) {
    Diagnostics diagnostics;
    const auto source = parse_copybook_text(text, "test.cpy", options, diagnostics);
    return describe(source, diagnostics);
}

std::string compile_file(const std::string& file, const CopybookOptions& options) {
    Diagnostics diagnostics;
    const auto source = parse_copybook_file(file, options, diagnostics);
    return describe(source, diagnostics);
}

}  // namespace records
