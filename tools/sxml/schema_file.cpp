#include "tools/sxml/schema_file.h"

#include <sys/stat.h>

#include <cerrno>

#include "tools/sxml/document.h"
#include "tools/sxml/errors.h"
#include "tools/sxml/settings.h"

namespace command {

namespace {

bool is_empty_file(const std::string& name) {
    struct stat status = {};
    return stat(name.c_str(), &status) != 0 || (S_ISREG(status.st_mode) && status.st_size == 0);
}

}  // namespace

void write_schema_file(const host::Module& module, const AtomicOutput& schema) {
    force_setting("SXML_CREATE_STYLE", "SCHEMA");
    force_setting("SXML_CREATE_SCHEMA", "yes");
    force_setting("SXML_SCHEMA_NAME", schema.write_name());
    const AtomicOutput unused(temporary_folder() + "/sxml-schema.xml");
    Document document(module, unused);
    document.close();
    check_written({&schema, &unused});
    // The module has no result for this: what it could not open it leaves as it was.
    if (is_empty_file(schema.write_name())) fail(schema.target() + ": the schema was not written");
}

}  // namespace command
