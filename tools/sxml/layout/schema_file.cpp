#include "tools/sxml/layout/schema_file.h"

#include "host/runtime/streams.h"
#include "platform/files.h"
#include "tools/sxml/document.h"
#include "tools/sxml/failure.h"
#include "tools/sxml/options/setting_options.h"
#include "tools/sxml/output/scratch_output.h"

namespace command {

namespace {

bool is_empty_file(const std::string& name) {
    const auto state = platform::state_of(name);
    return !state || (state->kind == platform::FileKind::regular && state->size == 0);
}

}  // namespace

void write_schema_file(const host::Module& module, const AtomicOutput& schema) {
    force_setting("SXML_CREATE_STYLE", "SCHEMA");
    force_setting("SXML_CREATE_SCHEMA", "yes");
    force_setting("SXML_SCHEMA_NAME", schema.write_name());
    const ScratchOutput unused;
    write_empty_document(module, unused.output());
    check_written({&schema, &unused.output()});
    // The module does not report this: a file that it cannot open stays unchanged.
    if (!is_empty_file(schema.write_name())) return;
    if (const int error = host::take_open_failure(); error != 0) fail_file(schema.target(), error);
    fail(schema.target() + ": the schema was not written");
}

}  // namespace command
