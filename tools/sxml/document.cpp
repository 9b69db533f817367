#include "tools/sxml/document.h"

#include <cerrno>
#include <new>

#include "conversion/session/module.h"
#include "host/errors.h"
#include "host/runtime/memory/memory_report.h"
#include "records/description.h"
#include "tools/sxml/failure.h"

namespace command {

namespace {

[[noreturn]] void fail_open(const std::string& name, int error) {
    if (*host_file_error() == HOST_FILE_NO_MEMORY) fail(host::memory_problem());
    if (!records::last_description_error().empty()) fail(records::last_description_error());
    fail_file(name, error);
}

}  // namespace

const host::Module& load_module() {
    return *value_of(conversion::xml_module());
}

void check_written(std::initializer_list<const AtomicOutput*> outputs) {
    const conversion::Done failure = conversion::take_write_failure();
    if (!failure) return;
    if (failure->cause == conversion::Cause::no_memory) throw std::bad_alloc();
    const std::string& file = failure->place.file;
    for (const AtomicOutput* output : outputs) {
        if (file == output->write_name()) {
            fail_file(output->shown_name(), failure->system_error);
        }
    }
    fail_file(file, failure->system_error);
}

void write_empty_document(const host::Module& module, const AtomicOutput& output) {
    errno = 0;
    XmlFile* const file = module.open(output.write_name().c_str(), XML_OPEN_OUTPUT);
    if (file == nullptr) fail_open(output.shown_name(), errno);
    module.close(file);
}

}  // namespace command
